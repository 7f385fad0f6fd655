#include "frame/distance.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "frame/multiversion.h"

namespace vantle {

namespace {

using Word [[gnu::may_alias, gnu::aligned(1)]] = std::int32_t;
static_assert(std::endian::native == std::endian::little);  // its first byte is its lowest

constexpr std::int32_t tile = 256;
constexpr std::uint32_t beyond = 1U << 30;  // the square of a distance past any table

/// A single-precision root is off by less than one: settled with the squares themselves.
template <DistanceRounding rounding>
VANTLE_INLINE void look(Weight* weights, std::int32_t dx, std::int32_t dy, std::int32_t count,
                        const DistanceTable& table) {
    const auto down = static_cast<std::uint32_t>(dy) * static_cast<std::uint32_t>(dy);
    const std::uint8_t* const weightAt = table.weights();
    const std::int32_t last = table.last();
    for (std::int32_t first = 0; first < count; first += tile) {
        const std::int32_t pixels = std::min(tile, count - first);
        std::int32_t distances[tile];
        for (std::int32_t i = 0; i < pixels; ++i) {
            const auto across = static_cast<std::uint32_t>(dx + first + i);
            const auto square = static_cast<std::int32_t>(std::min(across * across + down, beyond));
            constexpr bool nearest = rounding == DistanceRounding::nearest;
            auto distance =
                static_cast<std::int32_t>(std::sqrt(static_cast<float>(square)) + (nearest ? 0.5F : 0.0F));
            // The squares that round to a distance: d^2 - d + 1 to d^2 + d, or d^2 to d^2 + 2d when
            // truncated.
            const std::int32_t lowest = distance * distance - (nearest ? distance - 1 : 0);
            distance -= distance > 0 && square < lowest ? 1 : 0;
            const std::int32_t highest = distance * distance + (nearest ? distance : 2 * distance);
            distance += square > highest ? 1 : 0;
            distances[i] = std::min(distance, last);
        }
        // Four bytes for one: what processors gather is words.
        for (std::int32_t i = 0; i < pixels; ++i)
            weights[first + i] = Weight(*reinterpret_cast<const Word*>(weightAt + distances[i]) & 0xFF);
    }
}

}  // namespace

VANTLE_MULTIVERSION void weightsByDistance(Weight* weights, std::int32_t dx, std::int32_t dy,
                                           std::int32_t count, DistanceRounding rounding,
                                           const DistanceTable& table) {
    if (rounding == DistanceRounding::nearest)
        look<DistanceRounding::nearest>(weights, dx, dy, count, table);
    else
        look<DistanceRounding::truncated>(weights, dx, dy, count, table);
}

std::int32_t wholeRoot(std::int64_t square) {
    if (square < 0) return -1;
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    while (root * root > square) --root;
    while ((root + 1) * (root + 1) <= square) ++root;
    return static_cast<std::int32_t>(root);
}

}  // namespace vantle
