/// How a camera was held, and what brings its pictures upright.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "media/canvas.h"
#include "media/filters.h"

namespace vantle {

/// A display matrix as containers state it, in FFmpeg's order (libavutil/display.h).
using DisplayMatrix = std::array<std::int32_t, 9>;

/// What a display matrix asks for, to the nearest quarter turn.
Orientation orientationOf(const DisplayMatrix& matrix);

/// The display matrix that asks for this.
DisplayMatrix matrixOf(Orientation orientation);

/// What turns pictures as `first` does, and the result as `second` does.
Orientation inTurn(Orientation first, Orientation second);

/// What brings pictures that are upright into this orientation.
Orientation inverse(Orientation orientation);

/// The filters that bring pictures of this orientation upright.
std::vector<Filter> upright(Orientation orientation);

}  // namespace vantle
