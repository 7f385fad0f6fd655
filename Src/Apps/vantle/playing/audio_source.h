/// The audio of one file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "media/audio_format.h"
#include "media/decoder.h"
#include "media/demuxer.h"
#include "media/filters.h"
#include "timeline/film_request.h"
#include "timeline/source.h"

namespace vantle {

/// Decoded audio brought to one format, whatever formats it comes in.
class AudioSource {
   public:
    /// The audio of a stream of `input`, which must outlive it.
    AudioSource(Demuxer& input, int stream, const AudioFormat& format);

    /// The next of it, in samples of the format, or null at the end.
    av::Frame next();

   private:
    AudioFormat format_;
    StreamReader reader_;
    std::optional<Filters> converter_;  // from the decoded format to `format_`
    av::Frame like_;                    // audio of the format that the converter is made for
    av::Frame held_;                    // the first of another format, while the converter is emptied
    bool ended_ = false;
};

/// Opens an input for its audio alone, at its sample number `first` or before it.
std::unique_ptr<Demuxer> audioFrom(const Source& source, std::int64_t first, int sampleRate);

/// The audio of a film's input, without end: gaps and what follows are silent.
class AudioReader {
   public:
    /// From the input's sample number `first` on, counted from its time 0. The input's pictures must have
    /// been started with audio at about that time.
    AudioReader(Demuxer& input, int stream, const AudioFormat& format, std::int64_t first);

    /// The next `samples` samples.
    av::Frame read(int samples);

   private:
    bool take();

    AudioSource source_;
    AudioFormat format_;
    std::int64_t next_;                // the sample that is given next
    av::Frame held_;                   // audio that is yet to be given, at least in part
    std::int64_t place_ = 0;           // of its first sample
    std::optional<std::int64_t> end_;  // of the audio read so far
};

/// Music, what is wanted of it, again and again.
class MusicReader {
   public:
    /// Throws Error when the file cannot be read or has no audio.
    MusicReader(const Music& music, AVRational frameRate, const AudioFormat& format);

    /// The next `samples` samples.
    av::Frame read(int samples);

   private:
    Demuxer input_;
    int stream_;
    AudioFormat format_;
    std::int64_t in_;  // samples of the file, first and end
    std::int64_t out_;
    std::int64_t place_ = 0;  // of what is read next
    bool heard_ = false;      // some of it, since its start
    std::optional<AudioSource> source_;
    Filters portions_;
    std::int64_t end_ = 0;  // of the audio read so far, in samples
};

}  // namespace vantle
