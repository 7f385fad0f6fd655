#include "frame/pixels/distance.h"

#include <algorithm>
#include <cmath>

#include "frame/pixels/lookup.h"
#include "frame/pixels/processor.h"

namespace vantle {

namespace {

constexpr std::int32_t atOnce = 256;
constexpr std::uint32_t beyond = 1U << 30;  // the square of a distance past any table

/// A distance of this square that may be one too low, made good by the square itself.
template <DistanceRounding rounding>
VANTLE_INLINE std::int32_t corrected(std::int32_t distance, std::int32_t square) {
    // The last square that rounds to a distance is d^2 + d, or d^2 + 2d when truncated.
    const std::int32_t more = rounding == DistanceRounding::nearest ? distance : 2 * distance;
    return distance + (square > distance * distance + more ? 1 : 0);
}

/// A single-precision root is off by less than a hundredth: taken for a little less than it is, it is never
/// one too high.
template <DistanceRounding rounding>
VANTLE_INLINE std::int32_t distanceOf(std::int32_t square) {
    constexpr float less = rounding == DistanceRounding::nearest ? 0.4F : -0.1F;
    return corrected<rounding>(static_cast<std::int32_t>(std::sqrt(static_cast<float>(square)) + less),
                               square);
}

/// weights[i] = the table's for distances[i], those of the points (dx + i, dy).
VANTLE_INLINE void lookUpRow(Weight* weights, const std::int32_t* distances, std::int32_t dx, std::int32_t dy,
                             std::int32_t count, const DistanceTable& table) {
    const std::uint8_t* const weightAt = table.weights();
    const std::int32_t last = table.last();
    std::uint8_t lowest[atOnce];
    for (std::int32_t i = 0; i < count; ++i)
        lowest[i] = static_cast<std::uint8_t>(std::min(distances[i], last));
    std::int32_t i = 0;
    for (; hasAvx2() && i + nearBytes <= count; i += nearBytes) {
        // From a point to the next the distance changes by one at most: the nearest of these is one of the
        // ends, or between them the one in the centre column.
        const bool turns = dx + i < 0 && dx + i + nearBytes > 0;
        const std::int32_t nearest =
            turns ? std::abs(dy) : std::min(distances[i], distances[i + nearBytes - 1]);
        lookUp(weights + i, weightAt, lowest + i, std::min(nearest, last));
    }
    for (; i < count; ++i) weights[i] = weightAt[std::min(distances[i], last)];
}

template <DistanceRounding rounding>
VANTLE_INLINE void lookUpRows(Weight* weights, std::ptrdiff_t stride, std::int32_t rows, std::int32_t dx,
                              std::int32_t dy, std::int32_t count, const DistanceTable& table) {
    for (std::int32_t first = 0; first < count; first += atOnce) {
        const std::int32_t pixels = std::min(atOnce, count - first);
        std::int32_t distances[atOnce];
        for (std::int32_t row = 0; row < rows; ++row) {
            const auto down = static_cast<std::uint32_t>(dy + row) * static_cast<std::uint32_t>(dy + row);
            const auto squareAt = [=](std::int32_t i) {
                const auto across = static_cast<std::uint32_t>(dx + first + i);
                return static_cast<std::int32_t>(std::min(across * across + down, beyond));
            };
            if (row == 0)
                for (std::int32_t i = 0; i < pixels; ++i) distances[i] = distanceOf<rounding>(squareAt(i));
            else
                for (std::int32_t i = 0; i < pixels; ++i)
                    distances[i] = corrected<rounding>(distances[i], squareAt(i));
            lookUpRow(weights + stride * row + first, distances, dx + first, dy + row, pixels, table);
        }
    }
}

}  // namespace

VANTLE_MULTIVERSION void weightsByDistance(Weight* weights, std::ptrdiff_t stride, std::int32_t rows,
                                           std::int32_t dx, std::int32_t dy, std::int32_t count,
                                           DistanceRounding rounding, const DistanceTable& table) {
    if (rounding == DistanceRounding::nearest)
        lookUpRows<DistanceRounding::nearest>(weights, stride, rows, dx, dy, count, table);
    else
        lookUpRows<DistanceRounding::truncated>(weights, stride, rows, dx, dy, count, table);
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
