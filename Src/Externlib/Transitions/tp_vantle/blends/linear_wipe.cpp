// Linear wipes: the incoming frame follows an edge that is a ramp half the width long, in both directions of
// travel.
#include <cmath>

#include "frame/columns.h"
#include "frame/crossing.h"
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
    for (Row row : stage.rows(Writes::pixels)) {
        const float share = ramp.shareAt(row.y());
        if (share == 0.0F)
            row.to(stage.width());
        else if (share < 1.0F)
            row.fade(share, stage.width());
        row.fromRest();
    }
}

void linearWipeLeftRight(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const Ramp ramp(width, progress.eased());
    const std::int32_t gone = crossing(0, width, [&](std::int32_t x) { return ramp.shareAt(x) > 0.0F; });
    const std::int32_t kept = crossing(gone, width, [&](std::int32_t x) { return ramp.shareAt(x) >= 1.0F; });
    PerColumn shares([=](std::int32_t x) { return ramp.shareAt(x); });
    for (Row row : stage.rows(Writes::pixels)) row.to(gone).fade(shares(row), kept).fromRest();
}

}  // namespace vantle
