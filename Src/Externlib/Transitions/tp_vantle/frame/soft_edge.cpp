#include "frame/soft_edge.h"

#include "frame/multiversion.h"

namespace vantle {

VANTLE_MULTIVERSION void estimateShares(double* shares, const Ray& ray, std::int32_t dx, std::int32_t dy,
                                        std::int32_t count) {
    const double across = dy * ray.sine;
    const double along = -dy * ray.cosine;
    for (std::int32_t i = 0; i < count; ++i) {
        const double x = dx + i;
        // The tangent of the angle from the ray, and the arctangent's series: the angle is small.
        const double tangent = (x * ray.cosine + across) / (x * ray.sine + along);
        const double square = tangent * tangent;
        const double series =
            1.0 - square * (1.0 / 3 - square * (1.0 / 5 - square * (1.0 / 7 - square * (1.0 / 9))));
        shares[i] = tangent * series * ray.scale;
    }
}

}  // namespace vantle
