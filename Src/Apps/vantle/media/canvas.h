/// What pictures are, as values: sizes, rates, orientations and colours.
#pragma once

#include <cstdint>

extern "C" {
#include <libavutil/pixfmt.h>
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

/// How a picture of another shape fills the canvas: whole with black bars or with its own blurred picture
/// beside it, filled with its edges cut off, or stretched.
enum class Fit : std::uint8_t { contain, cover, stretch, blur };

/// How a camera was held: what a display matrix asks of a player.
struct Orientation {
    int quarterTurns = 0;   ///< clockwise, that bring a picture upright: 0 to 3
    bool mirrored = false;  ///< and its left and right, or its top and bottom, are to be exchanged
    bool operator==(const Orientation&) const = default;
};

/// What numbers in pictures mean as colours.
struct Colours {
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace space = AVCOL_SPC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    bool operator==(const Colours&) const = default;

    /// Far brighter than a usual screen shows: they must be mapped to those that it shows.
    bool hdr() const { return transfer == AVCOL_TRC_SMPTE2084 || transfer == AVCOL_TRC_ARIB_STD_B67; }
};

/// Colours with what they leave open as players take it: the matrix by the height of the pictures, and the
/// others by the matrix.
inline Colours completed(Colours colours, int height) {
    if (colours.space == AVCOL_SPC_UNSPECIFIED)
        colours.space = height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    const bool isWide = colours.space == AVCOL_SPC_BT2020_NCL || colours.space == AVCOL_SPC_BT2020_CL;
    const bool isPal = colours.space == AVCOL_SPC_BT470BG;
    const bool isNtsc = colours.space == AVCOL_SPC_SMPTE170M || colours.space == AVCOL_SPC_FCC;
    if (colours.primaries == AVCOL_PRI_UNSPECIFIED)
        colours.primaries = isWide   ? AVCOL_PRI_BT2020
                            : isPal  ? AVCOL_PRI_BT470BG
                            : isNtsc ? AVCOL_PRI_SMPTE170M
                                     : AVCOL_PRI_BT709;
    if (colours.transfer == AVCOL_TRC_UNSPECIFIED)
        colours.transfer = isPal || isNtsc ? AVCOL_TRC_SMPTE170M : AVCOL_TRC_BT709;
    if (colours.range == AVCOL_RANGE_UNSPECIFIED) colours.range = AVCOL_RANGE_MPEG;
    return colours;
}

/// The size and rate that all pictures of a rendering are brought to.
struct Canvas {
    Size size;
    AVRational rate{};  ///< pictures per second
    Fit fit = Fit::contain;
};

}  // namespace vantle
