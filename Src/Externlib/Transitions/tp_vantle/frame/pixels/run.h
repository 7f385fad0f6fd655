/// Runs of pixels, and what is done to them: a family of loops for each way in which bytes are made.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vantle {

/// Which of the two input frames pixels come from.
enum class Source : std::uint8_t { from, to };

/// A whole pixel, byte 0 the lowest.
using Pixel = std::uint32_t;

/// The weight of imgTo in one pixel, 0 to 255.
using Weight = std::uint8_t;

/// A run of pixels at the same place in all frames, at any alignment.
struct Run {
    std::uint8_t* out;
    const std::uint8_t* from;
    const std::uint8_t* to;
    const std::uint8_t* fourth;  ///< where byte 3 comes from; null where it is treated like the other three
    std::int32_t count;          ///< pixels
    bool streamed;               ///< whether the frame is too large for a cache to hold
    std::ptrdiff_t
        ahead;  ///< bytes to the same pixels of the next row, where they are worth prefetching; else 0
};

/// What a weighted byte is divided by. Each of the two products is divided on its own and truncated; by 256 a
/// byte of full weight loses one level (255 / 256). In single precision the sum of both quotients by 255 is
/// truncated.
enum class Division : std::uint8_t { by255, by256, single };

/// Pixels of some frame or other place, the first being that of the run.
void copy(const Run& run, const std::uint8_t* pixels);

/// Bytes from * (255 - weight) / divisor + to * weight / divisor, with one weight for the whole run: not in
/// single precision.
void mix(const Run& run, Division division, std::int32_t weight);

/// The same with a weight for each pixel.
void mix(const Run& run, Division division, const Weight* weights);

/// The same by 255, with half the sum of a pixel's weight and another, truncated.
void mixMean(const Run& run, const Weight* weights, Weight other);

/// All four bytes (from - to) * share + to in single precision, truncated, with one share 0 to 1 of imgFrom.
void fade(const Run& run, float share);

/// The same with a share for each pixel.
void fade(const Run& run, const float* shares);

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

/// Black, whatever the pixels are.
inline constexpr Shade black{0.0};

/// Bytes 0 to 2 of pixels times a factor; byte 3 as it is, where it is not the run's own.
void shade(const Run& run, const std::uint8_t* pixels, const Shade& factor);

/// Pixels of imgTo where the mask is 255, of imgFrom where it is 0; there is nothing else in it.
void choose(const Run& run, const Weight* mask);

/// Pixels of imgTo where their rank is below `end`, and of imgFrom.
void choose(const Run& run, const std::uint32_t* ranks, std::uint32_t end);

/// Pixels from other places than their own: those that have been gathered or, where there are none, the
/// pixels `columns[0]`, `columns[1]`, ... of a row; columns only rise.
struct Samples {
    const Pixel* gathered;
    const std::uint8_t* row;
    const std::int32_t* columns;
};

/// Gathers samples of a row.
void gather(Pixel* out, const std::uint8_t* row, const std::int32_t* columns, std::int32_t count);

/// Samples.
void sample(const Run& run, const Samples& samples);

/// Samples over others: bytes over * opacity + under * (1 - opacity) in single precision, truncated.
void sample(const Run& run, const Samples& over, const Samples& under, float opacity);

/// Whole pixels from anywhere: `places[0]`, `places[1]`, ... pixels from pixel `origin` on.
void gather(const Run& run, const Pixel* pixels, std::ptrdiff_t origin, const std::int32_t* places);

}  // namespace vantle
