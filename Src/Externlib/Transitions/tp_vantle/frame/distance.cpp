#include "frame/distance.h"

#include <algorithm>
#include <cmath>

#include "frame/load_each.h"
#include "frame/multiversion.h"

namespace vantle {

namespace {

constexpr std::int32_t tile = 256;
constexpr std::int32_t group = 16;
constexpr std::uint32_t beyond = 1U << 30;  // the square of a distance past any table

/// A single-precision root is off by less than a hundredth: taken for a little less than it is, it is never
/// one too high, and settled with the square itself.
template <DistanceRounding rounding>
VANTLE_INLINE std::int32_t distanceOf(std::int32_t square) {
    constexpr bool nearest = rounding == DistanceRounding::nearest;
    const auto distance =
        static_cast<std::int32_t>(std::sqrt(static_cast<float>(square)) + (nearest ? 0.4F : -0.1F));
    // The last square that rounds to a distance is d^2 + d, or d^2 + 2d when truncated.
    const std::int32_t highest = distance * distance + (nearest ? distance : 2 * distance);
    return distance + (square > highest ? 1 : 0);
}

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
            distances[i] = std::min(distanceOf<rounding>(square), last);
        }
        std::int32_t i = 0;
        for (; i + group <= pixels; i += group) {
            Weight found[group];
            loadEach(found, [&](std::int32_t of) { return weightAt[distances[i + of]]; });
            std::copy_n(found, group, weights + first + i);
        }
        for (; i < pixels; ++i) weights[first + i] = weightAt[distances[i]];
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

VANTLE_MULTIVERSION void mirror(Weight* mirrored, const Weight* weights, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) mirrored[i] = weights[count - 1 - i];
}

std::int32_t wholeRoot(std::int64_t square) {
    if (square < 0) return -1;
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    while (root * root > square) --root;
    while ((root + 1) * (root + 1) <= square) ++root;
    return static_cast<std::int32_t>(root);
}

}  // namespace vantle
