/// Weights in a soft edge that turns about a pivot: a straight edge whose share falls off with the angle to
/// it.
#pragma once

#include <cstdint>

#include "frame/pixels.h"

namespace vantle {

/// A ray from a pivot, and how a pixel's share of 255 grows with its angle from it.
struct Ray {
    double sine;  ///< of its angle, clockwise from the upward vertical
    double cosine;
    double scale;  ///< share per radian; negative for an edge that lies anticlockwise of the ray
};

/// Estimates of the shares of pixels (dx + i, dy) from the pivot, x to the right and y downward; good for
/// angles of up to 0.16 from the ray, to within 2e-10 radians of the true angle. Not a number at the pivot
/// itself.
void estimateShares(double* shares, const Ray& ray, std::int32_t dx, std::int32_t dy, std::int32_t count);

/// The whole part of each pixel's exact share, as weights. The exact share, `shareAt(i)`, takes an
/// arctangent: it is asked for only where the estimate, trusted to `tolerance` radians, leaves the whole part
/// open.
template <typename ShareAt>
void softEdgeWeights(Weight* weights, const Ray& ray, std::int32_t dx, std::int32_t dy, std::int32_t count,
                     double tolerance, ShareAt shareAt) {
    constexpr std::int32_t tile = 256;
    const double open = tolerance * (ray.scale < 0.0 ? -ray.scale : ray.scale);
    for (std::int32_t first = 0; first < count; first += tile) {
        const std::int32_t pixels = count - first < tile ? count - first : tile;
        double shares[tile];
        estimateShares(shares, ray, dx + first, dy, pixels);
        for (std::int32_t i = 0; i < pixels; ++i) {
            const double share = shares[i];
            auto whole = static_cast<std::int32_t>(share >= 0.0 && share < 256.0 ? share : 0.0);
            const double part = share - whole;
            if (!(part > open && part < 1.0 - open)) whole = static_cast<std::int32_t>(shareAt(first + i));
            weights[first + i] = Weight(whole);
        }
    }
}

}  // namespace vantle
