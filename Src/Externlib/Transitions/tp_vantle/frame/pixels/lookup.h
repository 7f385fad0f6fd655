/// Loads from places that lie close to each other: what one or two wide loads bring is put in order by the
/// processor (a shuffle), instead of being loaded one by one. That is faster only where `hasAvx2`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/pixels/processor.h"

namespace vantle {

/// Bytes that are looked up at a time, and how far apart they may be.
constexpr std::int32_t nearBytes = 16;

/// found[i] = table[place], for places `first` to `first` + 15 of a table that has all of these, of which the
/// lowest byte is told: places[i].
VANTLE_INLINE void lookUp(std::uint8_t* found, const std::uint8_t* table, const std::uint8_t* places,
                          std::int32_t first) {
    table += first;
    const auto lowest = static_cast<std::uint8_t>(first);
#if VANTLE_LEVELS
    using Bytes [[gnu::vector_size(nearBytes)]] = std::uint8_t;
    Bytes all, wanted;
    std::memcpy(&all, table, sizeof all);
    std::memcpy(&wanted, places, sizeof wanted);
    const Bytes looked = __builtin_shuffle(all, wanted - lowest);
    std::memcpy(found, &looked, sizeof looked);
#else
    std::uint8_t all[nearBytes];
    std::memcpy(all, table, sizeof all);
    for (std::int32_t i = 0; i < nearBytes; ++i)
        found[i] = all[static_cast<std::uint8_t>(places[i] - lowest)];
#endif
}

/// Words that are looked up at a time; they may be twice as far apart.
constexpr std::int32_t nearWords = 8;
constexpr std::int32_t wordsReach = 2 * nearWords;

/// found[i] = the word `places[i]` words from `table` on, for places `first` to `first` + 15 of a table that
/// has all of these.
VANTLE_INLINE void lookUp(std::uint32_t* found, const std::uint8_t* table, const std::int32_t* places,
                          std::int32_t first) {
#if VANTLE_LEVELS
    using Words [[gnu::vector_size(4 * nearWords)]] = std::int32_t;
    const std::uint8_t* const start = table + std::ptrdiff_t{4} * first;
    Words low, high, wanted;
    std::memcpy(&low, start, sizeof low);
    std::memcpy(&high, start + sizeof low, sizeof high);
    std::memcpy(&wanted, places, sizeof wanted);
    const Words looked = __builtin_shuffle(low, high, wanted - first);
    std::memcpy(found, &looked, sizeof looked);
#else
    std::uint32_t all[wordsReach];
    std::memcpy(all, table + std::ptrdiff_t{4} * first, sizeof all);
    for (std::int32_t i = 0; i < nearWords; ++i) found[i] = all[places[i] - first];
#endif
}

}  // namespace vantle
