#include "timeline/audio_gain.h"

#include <algorithm>
#include <limits>

#include "timeline/time.h"

namespace vantle {

namespace {

Slope slopeOf(const Film& film, std::size_t join, int sampleRate) {
    const std::int64_t start = sampleOf(film.joins[join].start, film.canvas.rate, sampleRate);
    const std::int64_t end = sampleOf(film.joins[join].end(), film.canvas.rate, sampleRate);
    return {start, end - start, film.fadeCurve};
}

}  // namespace

double Slope::position(std::int64_t sample) const {
    if (length <= 0) return sample >= start ? 1.0 : 0.0;
    return std::clamp(static_cast<double>(sample - start) / static_cast<double>(length), 0.0, 1.0);
}

PartGain::PartGain(const Film& film, std::size_t part, int sampleRate)
    : volume_(film.parts[part].volume),
      rise_(part > 0 ? slopeOf(film, part - 1, sampleRate) : Slope{}),
      fall_(part < film.joins.size() ? slopeOf(film, part, sampleRate)
                                     : Slope{.start = std::numeric_limits<std::int64_t>::max()}) {}

float PartGain::at(std::int64_t sample) const {
    return static_cast<float>(volume_ * rise_.risen(sample) * fall_.fallen(sample));
}

FilmGain::FilmGain(const Film& film, int sampleRate) {
    const std::int64_t end = film.frames();
    const auto sample = [&](std::int64_t frame) { return sampleOf(frame, film.canvas.rate, sampleRate); };
    rise_ = {0, sample(film.fadeIn)};
    fall_ = {sample(end - film.fadeOut), sample(end) - sample(end - film.fadeOut)};
}

float FilmGain::at(std::int64_t sample) const {
    return static_cast<float>(rise_.risen(sample) * fall_.fallen(sample));
}

MusicGain::MusicGain(const Film& film, int sampleRate)
    : volume_(film.music.volume), attack_(sampleRate / 2), release_(sampleRate) {
    const std::int64_t fade = film.fadeOut > 0 ? 0 : 2 * std::int64_t{sampleRate};
    end_ = {sampleOf(film.frames(), film.canvas.rate, sampleRate) - fade, fade};
    constexpr AVRational milliseconds{1000, 1};
    for (const LoudSpan& span : film.loud)
        loud_.emplace_back(sampleOf(span.start, milliseconds, sampleRate),
                           sampleOf(span.end, milliseconds, sampleRate));
}

/// How far down it is, 0 to 1: all the way by the time inputs are loud, and up again only after that.
double MusicGain::ducked(std::int64_t sample) const {
    double down = 0.0;
    auto span = std::ranges::partition_point(
        loud_, [&](const auto& loud) { return loud.second + release_ <= sample; });
    for (; span != loud_.end() && span->first - attack_ < sample; ++span)
        down = std::max(down, std::min(Slope{span->first - attack_, attack_, FadeCurve::hsin}.risen(sample),
                                       Slope{span->second, release_, FadeCurve::hsin}.fallen(sample)));
    return down;
}

float MusicGain::at(std::int64_t sample) const {
    constexpr double whenDucked = 0.25;  // 12 decibels less
    return static_cast<float>(volume_ * end_.fallen(sample) * (1.0 - (1.0 - whenDucked) * ducked(sample)));
}

}  // namespace vantle
