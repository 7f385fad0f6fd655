// Pinwheel: four blades of the incoming frame open anticlockwise about the centre, each through a quarter
// turn.
#include <cmath>

#include "frame/progress.h"
#include "frame/stage.h"

namespace vantle {

/// Whole pixels. A pixel's angle is measured in whole pixels from the half-axis that its blade starts on.
void pinwheel(const Stage& stage, const Progress& progress) {
    constexpr double pi = 3.141592653589793;
    const double blade = progress.easedPosition() * pi / (progress.duration() + progress.duration());
    const std::int32_t width = stage.width();
    const std::int32_t centreColumn = width / 2;
    const std::int32_t centreRow = stage.height() / 2;

    for (Row row : stage.rows()) {
        const std::int32_t down = row.y() - centreRow;
        const double dy = std::abs(down);
        if (blade < 0.01 || down == 0) {
            row.show(blade < 0.01 ? Source::from : Source::to, width).fromRest();
            continue;
        }
        // Where the edges of the two blades cross the row is near the tangent, and settled with the rule
        // itself.
        const auto nearAxis = [=](double dx) { return blade > std::atan(dx / dy); };
        const auto farFromAxis = [=](double dx) { return blade > std::atan(dy / dx); };
        const auto crossing = [=](double guess) {
            return static_cast<std::int32_t>(std::min<double>(std::max(guess, 0.0), width));
        };
        // The last column of the blade on the vertical axis, and the first of that on the horizontal one.
        std::int32_t near = crossing(blade < pi / 2 ? dy * std::tan(blade) : width);
        while (near > 0 && !nearAxis(near)) --near;
        while (near < width && nearAxis(near + 1)) ++near;
        std::int32_t far = std::max(crossing(dy / std::tan(blade)), 1);
        while (far > 1 && farFromAxis(far - 1)) --far;
        while (far < width && !farFromAxis(far)) ++far;
        if (down < 0)
            row.from(centreColumn - near).to(centreColumn + 1).from(centreColumn + far).to(width);
        else
            row.to(centreColumn - far + 1).from(centreColumn).to(centreColumn + near + 1).from(width);
        row.fromRest();
    }
}

}  // namespace vantle
