/// The sound of a film.
#pragma once

#include <cstdint>
#include <list>
#include <optional>

#include "media/decoder.h"
#include "media/filters.h"
#include "media/sound_format.h"
#include "timeline/film.h"

namespace vantle {

/// The sound of one input in single precision, without end: gaps and what follows are silent.
class SoundReader {
   public:
    /// From the input's sample number `first` on, counted from its time 0. The input's pictures must have
    /// been started with sound at about that time.
    SoundReader(Input& input, const SoundFormat& format, std::int64_t first);

    /// The next `samples` samples.
    av::Frame read(int samples);

   private:
    void passOn();

    StreamReader reader_;
    std::string name_;
    SoundFormat format_;
    std::optional<Filters> converter_;  // from the decoded format to `format_`
    av::Frame like_;                    // sound of the format that the converter is made for
    Filters timed_;                     // puts the converted sound into its place in time
    std::int64_t end_ = 0;              // of the sound converted so far, in samples
};

/// Mixes the sound of a film's parts on a grid of samples that follows from its frames. Where both parts of a
/// join have sound it is crossfaded; where one has, it stays in its place.
class Soundtrack {
   public:
    /// Of the film's frames from `first` on, in this form.
    Soundtrack(const Film& film, const SoundFormat& format, std::int64_t first);

    /// Mixes the sound of all frames before `frame`, whose pictures have been read.
    void advance(std::int64_t frame);

    /// Says that nothing follows.
    void finish() { output_.close(given_); }

    /// The next sound for the encoder, or null when it needs `advance` first or has ended.
    av::Frame pull();

   private:
    struct Player {
        Player(std::size_t number, Input& input, const SoundFormat& format, std::int64_t first)
            : part(number), reader(input, format, first) {}
        std::size_t part;
        SoundReader reader;
    };
    std::int64_t sample(std::int64_t frame) const;
    bool sounds(std::size_t part) const { return film_.parts[part].input->soundStream().has_value(); }
    void add(AVFrame& mix, std::size_t part);

    const Film& film_;
    SoundFormat format_;  // in which sound is mixed
    int frameSamples_;
    std::list<Player> players_;
    Filters output_;      // to the encoder's format
    std::int64_t begin_;  // samples of the film: of what is wanted
    std::int64_t next_;   // not yet mixed
    std::int64_t given_ = 0;
};

}  // namespace vantle
