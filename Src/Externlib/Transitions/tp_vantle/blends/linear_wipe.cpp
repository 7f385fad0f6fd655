// Linear wipes: the incoming frame follows an edge that is a ramp half the width long, in both directions of
// travel.
#include <cmath>

#include "frame/progress.h"
#include "frame/ramp.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// The share of imgFrom along the way of the ramp. The mix of precisions is part of the rule.
class Ramp {
   public:
    Ramp(std::int32_t width, double eased) {
        if (eased < 0.5) {
            const double v = static_cast<float>(eased - std::sin(eased * twoPi) / twoPi);
            eased = 3.0 * v * v + -2.0 * v * v * v;
        }
        const float p = static_cast<float>(eased) * 1.5F;
        start_ = static_cast<float>(width * (static_cast<double>(p) - 0.5));
        end_ = static_cast<float>(width) * p;
    }
    float shareAt(std::int32_t at) const { return clampedRamp(start_, end_, static_cast<float>(at)); }

   private:
    float start_;
    float end_;
};

}  // namespace

void linearWipeUpDown(const Stage& stage, const Progress& progress) {
    const Ramp ramp(stage.width(), progress.eased());
    for (Row row : stage.rows()) {
        const float share = ramp.shareAt(row.y());
        if (share == 0.0F)
            row.to(stage.width());
        else if (share < 1.0F)
            row.fade(share, stage.width());
        row.fromRest();
    }
}

void linearWipeLeftRight(const Stage& stage, const Progress& progress) {
    constexpr std::int32_t tile = 4096;  // columns whose shares are worked out at a time, for every row
    const std::int32_t width = stage.width();
    const Ramp ramp(width, progress.eased());
    std::int32_t first = 0;
    do {
        const std::int32_t end = std::min(first + tile, width);
        Share shares[tile];
        std::int32_t gone = first;  // columns of the ramp: gone to end of `shares` that is used
        std::int32_t kept = first;
        for (std::int32_t x = first; x < end; ++x) {
            const float share = ramp.shareAt(x);
            shares[x - first] = Share(share);
            if (share == 0.0F) gone = x + 1;
            if (share < 1.0F) kept = x + 1;
        }
        for (Row row : stage.rows()) {
            row.skip(first).to(gone).fade(shares, first, kept).from(end);
            if (end == width) row.fromRest();
        }
        first = end;
    } while (first < width);
}

}  // namespace vantle
