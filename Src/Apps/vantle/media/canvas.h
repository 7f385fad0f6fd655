/// The size and rate that all pictures of a rendering are brought to.
#pragma once

#include <cstdint>

extern "C" {
#include <libavutil/rational.h>
}

namespace vantle {

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

/// The most pixels of a canvas across and down: what the encoders take.
constexpr int largestSide = 16384;

/// How a picture of another shape fills the canvas: whole with black bars, filled with its edges cut off, or
/// stretched.
enum class Fit : std::uint8_t { contain, cover, stretch };

struct Canvas {
    Size size;
    AVRational rate{};  ///< pictures per second
    Fit fit = Fit::contain;
};

}  // namespace vantle
