/// A film as a description: inputs one after the other, with joins where they overlap. It can be written
/// down, compared and laid out without an open file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "media/canvas.h"
#include "timeline/film_request.h"
#include "timeline/motion.h"
#include "timeline/source.h"

namespace vantle {

/// Frames, first and last, counted from 0.
struct FrameRange {
    std::int64_t first = 0;
    std::int64_t last = std::int64_t{1} << 40;  ///< far beyond any video, and countable in samples
};

/// What is shown of a source, in frames of the film.
struct Part {
    std::size_t source = 0;   ///< its place among the film's
    std::int64_t start = 0;   ///< the film's frame with which it begins
    std::int64_t frames = 0;  ///< how many frames show it
    std::int64_t first = 0;   ///< the source's picture that the first of them shows
    Fit fit = Fit::contain;
    bool audible = false;            ///< it has audio that is heard
    double volume = 1.0;             ///< a factor
    std::optional<Motion> motion{};  ///< over a still

    std::int64_t end() const { return start + frames; }
    bool holds(std::int64_t frame) const { return frame >= start && frame < end(); }

    /// From the number of one of the source's pictures to the film's frame that shows it.
    std::int64_t offset() const { return start - first; }
};

/// A transition by its names.
struct TransitionName {
    std::string shown;     ///< in the catalogue, else the function's
    std::string function;  ///< that draws it
};

/// Where a part and the one after it overlap, or without a transition where one is cut to the other.
struct Join {
    std::optional<TransitionName> transition{};
    std::int64_t start = 0;
    std::int64_t frames = 0;

    std::int64_t end() const { return start + frames; }
};

/// The parameters of a film's audio.
struct AudioParameters {
    int sampleRate = 0;
    int channels = 2;
};

/// Milliseconds of a film, first and end.
struct LoudSpan {
    std::int64_t start = 0;
    std::int64_t end = 0;

    bool operator==(const LoudSpan&) const = default;
};

/// Join i lies between parts i and i + 1; no frame lies in more than two parts.
struct Film {
    Canvas canvas{};
    std::vector<Source> sources{};
    std::vector<Part> parts{};
    std::vector<Join> joins{};
    std::optional<AudioParameters> audio{};  ///< none: it is silent
    FadeCurve fadeCurve = FadeCurve::qsin;
    Music music{};
    std::vector<LoudSpan> loud{};  ///< where music gives way, in order
    /// When, where and with which camera it was recorded: as of its first input that tells of it.
    std::map<std::string, std::string> tags{};
    /// The frame after each join is drawn by its transition too, at its very end.
    bool drawsEnds = false;
    std::int64_t fadeIn = 0;   ///< frames over which it comes from black and silence; the first is black
    std::int64_t fadeOut = 0;  ///< frames over which it goes there; the last is black

    std::int64_t frames() const { return parts.back().end(); }

    /// How bright a frame shows, 0 to 1, or what lies between two: 1 but for the film's own fades.
    double lightAt(double frame) const;
    const Source& sourceOf(const Part& part) const { return sources[part.source]; }
};

}  // namespace vantle
