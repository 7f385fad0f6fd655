/// How loud what a film is mixed of is over time, in samples of the film.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "timeline/fade_curve.h"
#include "timeline/film.h"

namespace vantle {

/// A rise from 0 to 1, or seen from the other side a fall.
struct Slope {
    std::int64_t start = 0;
    std::int64_t length = 0;  ///< 0: at once
    FadeCurve curve = FadeCurve::tri;

    double risen(std::int64_t sample) const { return gainAt(curve, position(sample)); }
    double fallen(std::int64_t sample) const { return gainAt(curve, 1.0 - position(sample)); }

   private:
    double position(std::int64_t sample) const;
};

/// The gain of a part while it shows: its volume, rising over the join before it and falling over the one
/// after it.
class PartGain {
   public:
    PartGain(const Film& film, std::size_t part, int sampleRate);

    float at(std::int64_t sample) const;

   private:
    double volume_;
    Slope rise_;
    Slope fall_;
};

/// The gain of the whole film: it rises and falls with the film's own fades.
class FilmGain {
   public:
    FilmGain(const Film& film, int sampleRate);

    float at(std::int64_t sample) const;

   private:
    Slope rise_;
    Slope fall_;
};

/// The gain of the music: its volume, less where inputs are loud, and falling at the film's end, unless all
/// of it does.
class MusicGain {
   public:
    MusicGain(const Film& film, int sampleRate);

    float at(std::int64_t sample) const;

   private:
    double ducked(std::int64_t sample) const;

    double volume_;
    Slope end_;
    std::int64_t attack_;
    std::int64_t release_;
    std::vector<std::pair<std::int64_t, std::int64_t>> loud_;  // samples, first and end
};

}  // namespace vantle
