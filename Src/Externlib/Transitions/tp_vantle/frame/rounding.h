/// Conversions of computed sizes to pixels.
#pragma once

#include <cstdint>
#include <limits>

namespace vantle {

/// `value` truncated toward zero. Values beyond 32 bits saturate and NaN gives 0, so that no double at all
/// has an undefined conversion.
constexpr std::int32_t truncated(double value) {
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    if (value >= highest) return highest;
    if (value <= lowest) return lowest;
    return value == value ? static_cast<std::int32_t>(value) : 0;
}

/// A tenth of a size, made even by adding one, at least 2.
constexpr std::int32_t evenTenth(std::int32_t size) {
    const std::int32_t tenth = truncated(size * 0.1);
    return tenth < 2 ? 2 : tenth + tenth % 2;
}

/// `value` plus one half, truncated toward zero.
constexpr std::int32_t rounded(double value) { return truncated(value + 0.5); }

}  // namespace vantle
