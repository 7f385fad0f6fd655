#include "timeline/loudness.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "timeline/audio_gain.h"
#include "timeline/time.h"

namespace vantle {

double factorToLevel(const Loudness& loudness) {
    constexpr double unheard = 0.1;  // not worth encoding audio anew
    const double decibels = std::min(Loudness::wanted - loudness.integrated, Loudness::mostRaised);
    if (loudness.integrated <= Loudness::silence || std::abs(decibels) < unheard) return 1.0;
    return std::pow(10.0, decibels / 20.0);
}

std::vector<LoudSpan> loudSpans(const Film& film, std::span<const std::optional<Loudness>> measured) {
    constexpr double threshold = -42.0;  // between a quiet voice and a noisy room
    constexpr std::int64_t step = 100;   // milliseconds
    constexpr std::int64_t window = 400;
    constexpr std::int64_t pause = 1500;
    constexpr int inMilliseconds = 1000;
    std::vector<LoudSpan> found;
    for (std::size_t part = 0; part < film.parts.size(); ++part) {
        if (!measured[part]) continue;
        const PartGain gain(film, part, inMilliseconds);
        const std::int64_t first = sampleOf(film.parts[part].start, film.canvas.rate, inMilliseconds);
        const std::int64_t end = sampleOf(film.parts[part].end(), film.canvas.rate, inMilliseconds);
        std::optional<LoudSpan> span;
        const auto finish = [&] {
            // At its end a window is loud by what it still holds.
            if (span)
                found.push_back({span->start, std::max(span->end - (window - step), span->start + step)});
            span.reset();
        };
        std::int64_t time = first;
        for (const double momentary : measured[part]->momentary) {
            time = std::min(time + step, end);
            if (momentary + 20.0 * std::log10(std::max(gain.at(time - step / 2), 1e-9F)) < threshold) {
                finish();
                continue;
            }
            if (!span) span = LoudSpan{time - step, time};
            span->end = time;
        }
        // Loud to its end, unlike a window that only still holds it.
        if (span) found.push_back(*span);
    }
    std::ranges::sort(found, {}, &LoudSpan::start);
    std::vector<LoudSpan> joined;
    for (const LoudSpan& span : found)
        if (!joined.empty() && span.start - joined.back().end < pause)
            joined.back().end = std::max(joined.back().end, span.end);
        else
            joined.push_back(span);
    return joined;
}

}  // namespace vantle
