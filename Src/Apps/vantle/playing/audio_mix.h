/// The audio of a film.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include "media/audio_format.h"
#include "media/filters.h"
#include "media/limiter.h"
#include "playing/audio_source.h"
#include "playing/open_film.h"
#include "timeline/audio_gain.h"

namespace vantle {

/// Mixes the audio of a film's parts on a grid of samples that follows from its frames, each fading
/// over its joins, and limits the sum.
class AudioMix {
   public:
    /// Of the film from its sample `first` on, in this format. The inputs' audio is read along with their
    /// pictures, or `alone`. `delays` are the samples by which each part's audio comes late, so as to lie on
    /// a grid; none when it does not.
    AudioMix(const OpenFilm& open, const AudioFormat& format, std::int64_t first, bool alone,
             std::vector<std::int64_t> delays = {});

    /// Mixes the audio of all frames before `frame`, whose pictures have been read unless it is read alone.
    void advance(std::int64_t frame);

    /// Says that nothing follows.
    void finish();

    /// The next audio for the encoder, or null when it needs `advance` first or has ended.
    av::Frame pull();

   private:
    struct Player {
        Player(std::size_t number, Input& input, const AudioFormat& format, std::int64_t first, bool alone)
            : part(number),
              own(alone ? audioFrom(input.source(), first, format.sampleRate) : nullptr),
              reader(own ? *own : input.demuxer(), input.source().audio->stream, format, first) {}

        std::size_t part;
        std::unique_ptr<Demuxer> own;
        AudioReader reader;
    };
    std::int64_t sample(std::int64_t frame) const;
    void addPart(AVFrame& mix, std::size_t number);
    void addMusic(AVFrame& mix);
    void fade(AVFrame& mix) const;
    void passOn();

    const OpenFilm& open_;
    const Film& film_;
    std::vector<std::int64_t> delays_;
    AudioFormat format_;  // in which audio is mixed
    int frameSamples_;
    bool alone_;
    std::list<Player> players_;
    std::optional<MusicReader> music_;
    MusicGain musicGain_;
    FilmGain filmGain_;
    Limiter limiter_;
    Filters output_;      // to the encoder's format
    std::int64_t begin_;  // the film's first sample that is wanted
    std::int64_t next_;   // the first that is not yet mixed
};

}  // namespace vantle
