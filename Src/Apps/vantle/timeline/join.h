/// Joins two inputs as an editor does: FROM plays, its end overlaps the start of TO, TO plays on.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "timeline/clip.h"
#include "timeline/renderer.h"
#include "timeline/soundtrack.h"

namespace vantle {

struct Overlap {
    std::int64_t frames = 1;  ///< its length
    bool drawEnd = false;     ///< the picture after it is drawn too, with the transition at its very end
};

/// Gives all pictures of the joined inputs to `renderer`. Throws Error when an input is shorter than the
/// overlap. `sound` may be null.
void join(Clip& from, Clip& to, const Canvas& canvas, const Overlap& overlap, Renderer& renderer,
          Soundtrack* sound);

/// What an overlap shows at one position: a picture of each input, and where in the overlap they meet.
struct Meeting {
    av::Frame from;
    av::Frame to;
    double frame = 0.0;  ///< the position in frames; a fraction lies between two of them
};

/// What the overlap shows at each of `positions` (0 to 1, ascending). Starts both inputs; throws Error when
/// one is shorter than the overlap.
std::vector<Meeting> meetingsAt(Clip& from, Clip& to, const Canvas& canvas, std::int64_t overlapFrames,
                                std::span<const double> positions);

}  // namespace vantle
