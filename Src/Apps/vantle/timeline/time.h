/// Times of a film: exact, and rounded to its grids in one place.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

extern "C" {
#include <libavutil/rational.h>
}

namespace vantle {

/// A moment or a length of time: a fraction of seconds, or of frames of the film.
struct Time {
    std::int64_t value = 0;
    std::int64_t perUnit = 1;
    bool inFrames = false;

    /// In frames of a film, to the nearest one; a half goes up.
    std::int64_t frames(AVRational rate) const;

    /// In samples, the same for frames of a film of this rate.
    std::int64_t samples(AVRational frameRate, int sampleRate) const;

    /// The same in seconds or frames, as near as it can be.
    double number() const { return static_cast<double>(value) / static_cast<double>(perUnit); }

    bool operator==(const Time&) const = default;
};

/// Reads `2.5` (seconds), `1:02.5`, `500ms` or `12f`; none when the text is no such time.
std::optional<Time> parseTime(const std::string& text);

/// The number of the first sample of a frame: the one place where frames become samples.
std::int64_t sampleOf(std::int64_t frame, AVRational frameRate, int sampleRate);

}  // namespace vantle
