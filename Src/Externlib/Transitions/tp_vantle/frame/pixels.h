/// What is done to a run of pixels: the loops that all effects share, one family for every way in which they
/// write bytes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "frame/streaming.h"

namespace vantle {

/// Which of the two input frames pixels come from.
enum class Source : std::uint8_t { from, to };

/// What becomes of the fourth byte of a pixel.
enum class Fourth : std::uint8_t {
    mixed,   ///< treated like the other three
    ofFrom,  ///< that of imgFrom
    ofTo,    ///< that of imgTo
    kept     ///< not written: that which imgOut held, unless the stage is `keeping` an input's
};

/// What a weighted byte is divided by. Each of the two products is divided on its own and truncated; by 256
/// a byte of full weight loses one level (255 / 256).
enum class Divisor : std::uint8_t { by255, by256 };

/// A run of pixels at the same place in the three frames, at any alignment.
struct Run {
    std::uint8_t* out;
    const std::uint8_t* from;
    const std::uint8_t* to;
    const std::uint8_t* kept;  ///< where a byte 3 that is kept comes from: `out`, or an input
    std::int32_t count;        ///< pixels
    PastCache pastCache;       ///< what of it is written past the cache
    std::ptrdiff_t ahead;      ///< bytes to what is to be fetched meanwhile, as the next row; else 0
};

/// The weight of imgTo in one pixel, 0 to 255.
using Weight = std::uint8_t;

/// means[i] = half the sum of weights[i] and another, truncated.
void meanWeights(Weight* means, const Weight* weights, Weight other, std::int32_t count);

/// Bytes 0 to 2 of one frame; `fourth` must not be `mixed`.
void copyColours(const Run& run, Source colours, Fourth fourth);

/// Bytes from * (255 - weight) / divisor + to * weight / divisor, with one weight for the whole run.
void mix(const Run& run, Divisor divisor, Fourth fourth, std::int32_t weight);

/// The same with a weight for each pixel.
void mix(const Run& run, Divisor divisor, Fourth fourth, const Weight* weights);

/// All four bytes mixed in single precision: to * weight / 255 + from * (255 - weight) / 255, each term
/// divided on its own and their sum truncated.
void mixSingle(const Run& run, const Weight* weights);

/// A factor 0 to 1 for bytes, whose products are truncated.
struct Shade {
    /// No integer alone gives what double precision does, in which 0.7 * 90 is less than 63. A factor that
    /// differs from it in more bytes than there is room for does not compile.
    constexpr explicit Shade(double factor) {
        digits = static_cast<std::uint16_t>(factor * 65536.0);
        if (digits < factor * 65536.0) ++digits;
        std::size_t lower = 0;
        for (std::uint32_t byte = 0; byte < 256; ++byte)
            if ((byte * digits) >> 16 != static_cast<std::uint32_t>(byte * factor))
                less.at(lower++) = static_cast<std::uint16_t>(byte);
    }
    std::uint16_t digits;                              ///< of the factor, in 65536ths
    std::array<std::uint16_t, 3> less{256, 256, 256};  ///< bytes whose product is one less
};

/// Bytes 0 to 2 of one frame times a factor; byte 3 of the same frame.
void shade(const Run& run, Source source, const Shade& shade);

/// All four bytes (from - to) * share + to in single precision, truncated, with one share 0 to 1 of imgFrom
/// for the whole run.
void fade(const Run& run, float share);

/// The same with a share for each pixel.
void fade(const Run& run, const float* shares);

/// Bytes 0 to 2 black; byte 3 kept.
void blacken(const Run& run);

/// Pixels of both frames: of imgTo where its weight is 255, of imgFrom where it is 0; there are no others.
/// Byte 3 is treated like the other three (`mixed`) or that of imgFrom (`ofFrom`).
void weave(const Run& run, Fourth fourth, const Weight* weights);

/// Pixels `first` to `end` - 1 of one frame, and those around them of the other, both frames being read all
/// along. Byte 3 as in `weave`.
void window(const Run& run, Source inside, Fourth fourth, std::int32_t first, std::int32_t end);

/// Whether that is faster for `count` pixels, `ofTo` of them of imgTo, than a piece of each frame after
/// another: where much of both is to be read, memory loses more by beginning anew in every row.
constexpr bool windowIsFaster(Fourth fourth, std::int32_t ofTo, std::int32_t count, PastCache pastCache) {
    const std::int32_t lesser = std::min(ofTo, count - ofTo);
    if (fourth == Fourth::mixed)
        return canStream && pastCache == PastCache::everything && lesser >= count / 8;
    return lesser > 0 && ofTo >= count - ofTo;  // of these imgFrom is read in any case, for its byte 3
}

/// Whole pixels: of imgTo where their rank is below `end`, and of imgFrom.
void choose(const Run& run, const std::uint32_t* ranks, std::uint32_t end);

/// Whole pixels `pixels[origin + places[0]]`, `pixels[origin + places[1]]`, ...
void pick(const Run& run, const std::uint32_t* pixels, std::ptrdiff_t origin, const std::int32_t* places);

/// Pixels of a frame's row: its columns `columns[0]`, `columns[1]`, ..., which only rise.
struct Samples {
    const std::uint8_t* pixels;
    const std::int32_t* columns;
    std::ptrdiff_t
        ahead;  ///< bytes to the row whose same columns are to be fetched meanwhile, if any; else 0
};

/// Whole samples.
void gather(std::uint32_t* out, const Samples& samples, std::int32_t count);

/// Bytes 0 to 2 of samples; byte 3 kept.
void sample(const Run& run, const Samples& samples);

/// The same faded in over others: bytes over * opacity + under * (1 - opacity) in single precision,
/// truncated.
void sampleFaded(const Run& run, const Samples& over, const std::uint32_t* under, float opacity);

}  // namespace vantle
