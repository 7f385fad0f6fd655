#include "frame/soft_edge.h"

#include "frame/pixels/processor.h"

namespace vantle {

VANTLE_MULTIVERSION void estimateShares(double* shares, const Ray& ray, std::int32_t x, std::int32_t y,
                                        std::int32_t count) {
    const std::int32_t dx = x - ray.column;
    const std::int32_t dy = y - ray.row;
    const double across = dy * ray.sine;
    const double along = -dy * ray.cosine;
    // Local copies: `shares` may alias `ray`.
    const double sine = ray.sine;
    const double cosine = ray.cosine;
    const double scale = ray.scale;
    for (std::int32_t i = 0; i < count; ++i) {
        const double u = dx + i;
        // The tangent of the angle from the ray, and the arctangent's series: the angle is small.
        const double tangent = (u * cosine + across) / (u * sine + along);
        const double square = tangent * tangent;
        const double series =
            1.0 - square * (1.0 / 3 - square * (1.0 / 5 - square * (1.0 / 7 - square * (1.0 / 9))));
        shares[i] = tangent * series * scale;
    }
}

VANTLE_MULTIVERSION bool takeWholeParts(Weight* weights, const double* shares, double open,
                                        std::int32_t count) {
    std::int32_t opens = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        const double share = shares[i];
        weights[i] = static_cast<Weight>(wholePart(share));
        opens += isOpen(share, open) ? 1 : 0;
    }
    return opens > 0;
}

}  // namespace vantle
