/// Joins two inputs as an editor does: FROM plays, its end overlaps the start of TO, TO plays on.
#pragma once

#include <cstdint>

#include "clip.h"
#include "renderer.h"
#include "soundtrack.h"

namespace vantle {

struct Overlap {
    std::int64_t frames = 1;  ///< its length
    bool drawEnd = false;     ///< the picture after it is drawn too, with the transition at its very end
};

/// Gives all pictures of the joined inputs to `renderer`. Throws Error when an input is shorter than the
/// overlap. `sound` may be null.
void join(Clip& from, Clip& to, const Canvas& canvas, const Overlap& overlap, Renderer& renderer,
          Soundtrack* sound);

/// Gives the one picture at `position` (0 to 1) of the overlap to `renderer`.
void joinAt(Clip& from, Clip& to, const Canvas& canvas, std::int64_t overlapFrames, double position,
            Renderer& renderer);

}  // namespace vantle
