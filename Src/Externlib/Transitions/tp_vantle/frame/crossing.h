/// Where a row crosses an edge, found by halving.
#pragma once

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

}  // namespace vantle
