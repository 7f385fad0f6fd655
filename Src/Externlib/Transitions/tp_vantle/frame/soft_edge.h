/// Soft straight edges that turn about a pivot: the incoming frame's share falls off with the angle to them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/crossing.h"
#include "frame/stage.h"

namespace vantle {

/// A ray from the pixel (column, row), and how a pixel's share of 255 grows with its angle from it.
struct Ray {
    std::int32_t column;
    std::int32_t row;
    double sine;  ///< of its angle, clockwise from the upward vertical
    double cosine;
    double scale;      ///< share per radian; negative for an edge that lies anticlockwise of the ray
    double tolerance;  ///< how far the effect's own angles may be from the true ones, radians, at least 1e-9
};

/// What a pixel shows: imgFrom, a mix, or imgTo.
enum class Zone : std::uint8_t { kept, soft, full };

/// Estimates of the shares of pixels of row `y` from column `x` on; good for angles of up to 0.16 from the
/// ray, to within 2e-10 radians of the true angle. Not a number at the pivot itself.
void estimateShares(double* shares, const Ray& ray, std::int32_t x, std::int32_t y, std::int32_t count);

// Both conditions of these are asked for always: a branch between them would keep loops from vectors.

/// The whole part of a share; 0 of one outside 0 to 256.
constexpr std::int32_t wholePart(double share) {
    return static_cast<std::int32_t>(static_cast<int>(share >= 0.0) & static_cast<int>(share < 256.0) ? share
                                                                                                      : 0.0);
}

/// Whether a share is so near a whole number, within `open`, that its whole part may be another.
constexpr bool isOpen(double share, double open) {
    const double part = share - wholePart(share);
    return (static_cast<int>(part > open) & static_cast<int>(part < 1.0 - open)) == 0;
}

/// The whole parts of shares, as weights. Returns whether any is open.
bool takeWholeParts(Weight* weights, const double* shares, double open, std::int32_t count);

/// The whole part of each pixel's exact share, as weights. The exact share, `shareAt(x)`, takes an
/// arctangent: it is asked for only where the estimate leaves the whole part open.
template <typename ShareAt>
void softEdgeWeights(Weight* weights, const Ray& ray, std::int32_t x, std::int32_t y, std::int32_t count,
                     ShareAt shareAt) {
    constexpr std::int32_t tile = 256;
    const double open = ray.tolerance * (ray.scale < 0.0 ? -ray.scale : ray.scale);
    for (std::int32_t first = 0; first < count; first += tile) {
        const std::int32_t pixels = std::min(count - first, tile);
        double shares[tile];
        estimateShares(shares, ray, x + first, y, pixels);
        if (!takeWholeParts(weights + first, shares, open, pixels)) continue;
        for (std::int32_t i = 0; i < pixels; ++i)
            if (isOpen(shares[i], open)) weights[first + i] = static_cast<Weight>(shareAt(x + first + i));
    }
}

/// Draws the columns of a row up to `end`, over which the angle only rises or only falls, so that each zone,
/// `zoneAt(x)`, is one run.
template <typename ZoneAt, typename ShareAt>
void drawSoftEdge(Row& row, std::int32_t end, const Ray& ray, ZoneAt zoneAt, ShareAt shareAt) {
    constexpr std::int32_t tile = 512;
    end = std::min(end, row.columns().end);
    while (row.x() < end) {
        const Zone zone = zoneAt(row.x());
        const std::int32_t outside =
            zoneAt(end - 1) == zone
                ? end
                : crossing(row.x(), end, [&](std::int32_t x) { return zoneAt(x) != zone; });
        if (zone == Zone::kept)
            row.from(outside);
        else if (zone == Zone::full)
            row.to(outside);
        while (row.x() < outside) {
            const std::int32_t start = row.x();
            const std::int32_t count = std::min(outside - start, tile);
            Weight weights[tile];
            softEdgeWeights(weights, ray, start, row.y(), count, shareAt);
            row.mix(Columns<Weight>{weights, start}, start + count);
        }
    }
}

}  // namespace vantle
