// Cirque zoom: a growing disc of 15 rings, narrower toward the centre. In even rings the incoming frame's
// share grows with the depth in the ring, in odd rings the outgoing frame's does, and fades as the transition
// ends.
#include <cmath>

#include "frame/disc.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

/// Byte 3 stays.
void cirqueZoomIn(const Stage& stage, const Progress& progress) {
    constexpr std::int32_t rings = 15;
    const double t = progress.linear();
    if (t > 0.999) {
        stage.show(Source::to);
        return;
    }
    const double across = stage.width();
    const double down = stage.height();
    const double largest = std::sqrt(across * across + down * down) * 0.5 + 0.5;
    const std::int32_t radius = truncated(largest * t);
    const double unit = truncated(largest) / 120.0;
    std::int32_t ends[rings];
    for (std::int32_t ring = 0, sum = 0; ring < rings; ++ring) {
        sum += rings - ring;
        ends[ring] = rounded(sum * unit * t);
    }
    const double oddShare = progress.linearLeftOf(255.0);
    const DistanceTable table(radius + 1, [&](std::int32_t distance) {
        const std::int32_t depth = radius - distance;
        std::int32_t ring = 0;
        while (ring < rings && depth >= ends[ring]) ++ring;
        // In no ring: as deep as can be in an odd one.
        const float relative = ring < rings ? static_cast<float>(static_cast<double>(depth) / ends[ring])
                                            : std::nextafter(1.0F, 0.0F);
        if (ring < rings && ring % 2 == 0) return static_cast<std::int32_t>(relative * 255.0F);
        return 255 - truncated(static_cast<double>(relative) * oddShare);
    });
    drawDisc(stage, Writes::coloursOverFrom, Source::from, table, [=](std::int32_t dy) {
        return wholeRoot(std::int64_t{radius} * radius - std::int64_t{dy} * dy);
    });
}

}  // namespace vantle
