/// Loads from anywhere, one by one. Left as a loop they become the processor's own gather, which takes up to
/// four times as long.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/multiversion.h"

namespace vantle {

template <typename Element, typename At, std::size_t... i>
VANTLE_INLINE void loadEach(Element* loaded, At at, std::index_sequence<i...>) {
    ((loaded[i] = at(static_cast<std::int32_t>(i))), ...);
}

/// loaded[i] = at(i) for all of an array.
template <std::size_t count, typename Element, typename At>
VANTLE_INLINE void loadEach(Element (&loaded)[count], At at) {
    loadEach(loaded, at, std::make_index_sequence<count>());
}

}  // namespace vantle
