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

/// The same, looked for from `guess` on in steps that double, as where the row before crosses it close by.
template <typename Beyond>
std::int32_t crossing(std::int32_t first, std::int32_t end, std::int32_t guess, Beyond beyond) {
    std::int32_t at = std::clamp(guess, first, end);
    std::int32_t step = 1;
    if (at < end && !beyond(at)) {
        for (first = at + 1; end - first > step; step *= 2) {
            if (beyond(first + step)) return crossing(first, first + step, beyond);
            first += step + 1;
        }
    } else {
        for (end = at; end - first > step; step *= 2) {
            if (!beyond(end - step)) return crossing(end - step + 1, end, beyond);
            end -= step;
        }
    }
    return crossing(first, end, beyond);
}

}  // namespace vantle
