/// The sound of one file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "media/decoder.h"
#include "media/demuxer.h"
#include "media/filters.h"
#include "media/sound_format.h"

namespace vantle {

/// Decoded sound brought to one form, whatever forms it comes in.
class SoundSource {
   public:
    /// The sound of a stream of `input`, which must outlive it.
    SoundSource(Demuxer& input, int stream, const SoundFormat& format);

    /// The next of it, in samples of the form, or null at the end.
    av::Frame next();

   private:
    SoundFormat format_;
    StreamReader reader_;
    std::optional<Filters> converter_;  // from the decoded form to `format_`
    av::Frame like_;                    // sound of the form that the converter is made for
    av::Frame held_;                    // the first of another form, while the converter is emptied
    bool ended_ = false;
};

/// The sound of a film's input, without end: gaps and what follows are silent.
class SoundReader {
   public:
    /// From the input's sample number `first` on, counted from its time 0. The input's pictures must have
    /// been started with sound at about that time.
    SoundReader(Demuxer& input, int stream, const SoundFormat& format, std::int64_t first);

    /// The next `samples` samples.
    av::Frame read(int samples);

   private:
    bool take();

    SoundSource source_;
    SoundFormat format_;
    std::int64_t next_;                // the sample that is given next
    av::Frame held_;                   // sound that is yet to be given, at least in part
    std::int64_t place_ = 0;           // of its first sample
    std::optional<std::int64_t> end_;  // of the sound read so far
};

/// Music from its start, again and again.
class MusicReader {
   public:
    /// Throws Error when the file cannot be read or has no sound.
    MusicReader(const std::string& name, const SoundFormat& format);

    /// The next `samples` samples.
    av::Frame read(int samples);

   private:
    Demuxer input_;
    int stream_;
    SoundFormat format_;
    std::optional<SoundSource> source_;
    Filters portions_;
    std::int64_t end_ = 0;  // of the sound read so far, in samples
};

}  // namespace vantle
