/// What decoded pictures look like, in few bytes: to tell whether two are the same, or nearly.
#pragma once

#include <array>
#include <cstdint>

#include "media/av.h"

namespace vantle {

/// The same for pictures of the same pixels, and for no others that one is likely to meet.
std::uint64_t pixelsHash(const AVFrame& picture);

/// How bright a picture is, 0 to 1, in each cell of a coarse grid.
using Brightness = std::array<float, 128>;
Brightness brightnessOf(const AVFrame& picture);

/// True when one picture may be the other, encoded with a loss.
bool alike(const Brightness& a, const Brightness& b);

}  // namespace vantle
