/// Where a row crosses an edge, found by halving.
#pragma once

#include <algorithm>
#include <cstdint>

namespace vantle {

/// The first column of `first` to `end` - 1 that is `beyond(x)`, as all after it are; `end` when none is.
template <typename Beyond>
std::int32_t crossing(std::int32_t first, std::int32_t end, Beyond beyond) {
    while (first < end) {
        const std::int32_t middle = first + (end - first) / 2;
        if (beyond(middle))
            end = middle;
        else
            first = middle + 1;
    }
    return first;
}

/// The same, looked for about `guess` first.
template <typename Beyond>
std::int32_t crossing(std::int32_t first, std::int32_t end, std::int32_t guess, Beyond beyond) {
    constexpr std::int32_t near = 2;
    const std::int32_t low = std::clamp(guess, first + near, std::max(end, first + near)) - near;
    const std::int32_t high = std::min(low + 2 * near, end);
    if (low > first && beyond(low - 1)) return crossing(first, low - 1, beyond);
    if (high < end && !beyond(high)) return crossing(high + 1, end, beyond);
    return crossing(low, high, beyond);
}

}  // namespace vantle
