/// Bytes blended in single precision, as IEEE operations one by one would, without converting each.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/pixels/processor.h"

namespace vantle {

/// Bytes 0 and 1 of a word in single precision above 2^23, as which bits are put below it; the second 256
/// times as large, which spares a shift and rounds as it would without.
VANTLE_INLINE float firstRaised(std::uint32_t word) {
    return std::bit_cast<float>((word & 0x000000FFU) | 0x4B000000U);
}
VANTLE_INLINE float secondRaised(std::uint32_t word) {
    return std::bit_cast<float>((word & 0x0000FF00U) | 0x4B000000U);
}
VANTLE_INLINE float lowered(float raised) { return raised - 0x1p23F; }

/// `blend(a, b)` of each byte of two pixels, given raised: linear, 0 to 255 and truncated.
template <typename Blend>
VANTLE_INLINE std::uint32_t blendPixel(std::uint32_t a, std::uint32_t b, Blend blend) {
    const auto two = [=](std::uint32_t x, std::uint32_t y) {
        const auto first = static_cast<std::int32_t>(blend(firstRaised(x), firstRaised(y)));
        const auto second = static_cast<std::int32_t>(blend(secondRaised(x), secondRaised(y)));
        return static_cast<std::uint32_t>(first | (second & 0xFF00));
    };
    return two(a, b) | two(a >> 16, b >> 16) << 16;
}

/// Division of a byte times a weight by 255: the weight in two parts, of which a byte times the first is
/// exact, so that the sum of both products, once rounded, is the quotient.
struct Quotient {
    float first, second;
    constexpr explicit Quotient(float weight)
        : first(weight * 0x1.01p-8F), second(weight * (0x1p-16F / 255.0F)) {}
    constexpr float of(float byte) const { return byte * first + byte * second; }
};

/// Whether that holds for every byte and weight.
constexpr bool divideAs255ths() {
    for (std::int32_t weight = 0; weight < 256; ++weight)
        for (std::int32_t byte = 0; byte < 256; ++byte)
            if (Quotient(static_cast<float>(weight)).of(static_cast<float>(byte)) !=
                static_cast<float>(byte * weight) / 255.0F)
                return false;
    return true;
}
static_assert(divideAs255ths());

}  // namespace vantle
