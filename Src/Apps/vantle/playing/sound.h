/// The sound of a film.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "media/filters.h"
#include "media/sound_format.h"
#include "playing/open_film.h"
#include "playing/sound_source.h"

namespace vantle {

/// Mixes the sound of a film's parts on a grid of samples that follows from its frames. Where both parts of a
/// join have sound it is crossfaded; where one has, it stays in its place.
class Soundtrack {
   public:
    /// Of the film from its sample `first` on, in this form. The inputs' sound is read along with their
    /// pictures, or `alone`. `delays` are the samples by which each part's sound comes late, so as to lie on
    /// a grid; none when it does not.
    Soundtrack(const OpenFilm& open, const SoundFormat& format, std::int64_t first, bool alone,
               std::vector<std::int64_t> delays = {});

    /// Mixes the sound of all frames before `frame`, whose pictures have been read unless it is read alone.
    void advance(std::int64_t frame);

    /// Says that nothing follows.
    void finish() { output_.close(next_ - begin_); }

    /// The next sound for the encoder, or null when it needs `advance` first or has ended.
    av::Frame pull();

   private:
    struct Player {
        Player(std::size_t number, Input& input, const SoundFormat& format, std::int64_t first, bool alone)
            : part(number),
              own(alone ? soundOf(input, first, format.sampleRate) : nullptr),
              reader(own ? *own : input.demuxer(), input.source().audio->stream, format, first) {}
        static std::unique_ptr<Demuxer> soundOf(const Input& input, std::int64_t first, int sampleRate);

        std::size_t part;
        std::unique_ptr<Demuxer> own;
        SoundReader reader;
    };
    std::int64_t sample(std::int64_t frame) const;
    void addPart(AVFrame& mix, std::size_t number);
    void addMusic(AVFrame& mix);

    const OpenFilm& open_;
    const Film& film_;
    std::vector<std::int64_t> delays_;
    SoundFormat format_;  // in which sound is mixed
    int frameSamples_;
    bool alone_;
    std::list<Player> players_;
    std::optional<MusicReader> music_;
    Filters output_;      // to the encoder's format
    std::int64_t begin_;  // the film's first sample that is wanted
    std::int64_t next_;   // the first that is not yet mixed
};

}  // namespace vantle
