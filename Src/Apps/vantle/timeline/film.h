/// A film: inputs one after the other, with joins where they overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

#include "Host/plugin.h"
#include "media/canvas.h"
#include "timeline/clip.h"
#include "timeline/input.h"

namespace vantle {

/// Frames, first and last, counted from 0.
struct FrameRange {
    std::int64_t first = 0;
    std::int64_t last = std::int64_t{1} << 40;  ///< far beyond any video, and countable in samples
};

/// What is shown of an input, in frames of the film.
struct Part {
    Input* input;
    std::int64_t start = 0;   ///< the film's frame with which it begins
    std::int64_t frames = 0;  ///< how many frames show it
    std::int64_t first = 0;   ///< the input's picture that the first of them shows
    Fit fit = Fit::contain;
    bool mute = false;
    std::int64_t soundDelay = 0;  ///< samples by which its sound comes late, so as to lie on a grid

    bool sounds() const { return input->sound() && !mute; }
    std::int64_t end() const { return start + frames; }
    bool holds(std::int64_t frame) const { return frame >= start && frame < end(); }
};

/// Where a part and the one after it overlap, or without a transition where one is cut to the other.
struct Join {
    const Transition* transition;
    std::int64_t start = 0;
    std::int64_t frames = 0;

    std::int64_t end() const { return start + frames; }
};

/// The list that rendering, sound and overviews are made from. Join i lies between parts i and i + 1; no
/// frame lies in more than two parts.
struct Film {
    Canvas canvas;
    std::vector<Part> parts;
    std::vector<Join> joins;
    /// The frame after each join is drawn by its transition too, at its very end.
    bool drawsEnds = false;

    std::int64_t frames() const { return parts.back().end(); }
};

/// What shows at a moment: a picture of one input, or pictures of two and the transition between them.
struct Moment {
    av::Frame picture;
    av::Frame incoming;  ///< null outside joins
    TransFunc* transition = nullptr;
    double position = 0.0;  ///< in frames of the join
    double duration = 0.0;
};

/// The pictures of a film, frame by frame. At most two inputs are open at a time: one is closed when its part
/// has been read.
class FilmReader {
   public:
    /// From frame `first` on; with `sound`, the sound of its inputs can be read from there too.
    FilmReader(const Film& film, std::int64_t first, bool sound);

    /// What shows in the next frame. To be called for the film's frames only.
    Moment next();

   private:
    struct Player {
        std::size_t part;
        Clip clip;
        av::Frame last;
    };
    av::Frame pictureOf(std::size_t part, std::int64_t frame);

    const Film& film_;
    std::int64_t frame_;
    bool sound_;
    std::list<Player> players_;  // of the parts in this frame and the one before
};

/// What a join shows at each of `positions` (0 to 1, ascending).
std::vector<Moment> momentsOf(const Film& film, std::size_t join, const std::vector<double>& positions);

}  // namespace vantle
