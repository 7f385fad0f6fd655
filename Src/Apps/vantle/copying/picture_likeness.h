/// Whether two decoded pictures are the same, or nearly.
#pragma once

#include <array>
#include <cstdint>

#include "media/av.h"

namespace vantle {

/// True for pictures of one format and the same pixels.
bool samePixels(const AVFrame& a, const AVFrame& b);

/// How bright a picture is, 0 to 255, in each cell of a coarse grid.
using Brightness = std::array<std::uint8_t, 128>;
Brightness brightnessOf(const AVFrame& picture);

/// True when one picture may be the other, encoded with a loss.
bool alike(const Brightness& a, const Brightness& b);

}  // namespace vantle
