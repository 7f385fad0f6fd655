// Pinwheel: four blades of the incoming frame open anticlockwise about the centre, each through a quarter
// turn.
#include <cmath>
#include <limits>

#include "frame/progress.h"
#include "frame/stage.h"

namespace vantle {

/// Whole pixels. A pixel's angle is measured in whole pixels from the half-axis that its blade starts on.
void pinwheel(const Stage& stage, const Progress& progress) {
    constexpr double pi = 3.141592653589793;
    const double blade = progress.easedPosition() * pi / (progress.duration() + progress.duration());
    const double slope = blade < pi / 2 ? std::tan(blade) : std::numeric_limits<double>::infinity();
    // Whether an angle lies within the blade: tangents tell it, unless they are as good as equal.
    const auto within = [=](double tangent) {
        return std::abs(tangent - slope) > 1e-9 * slope ? tangent < slope : blade > std::atan(tangent);
    };
    const std::int32_t width = stage.width();
    const std::int32_t centreColumn = width / 2;
    const std::int32_t centreRow = stage.height() / 2;

    for (Row row : stage.rows(Writes::pixels)) {
        const std::int32_t down = row.y() - centreRow;
        const double dy = std::abs(down);
        if (blade < 0.01 || down == 0) {
            row.show(blade < 0.01 ? Source::from : Source::to, width).fromRest();
            continue;
        }
        const auto nearAxis = [=](double dx) { return within(dx / dy); };
        const auto farFromAxis = [=](double dx) { return within(dy / dx); };
        const auto crossing = [=](double guess) {
            return static_cast<std::int32_t>(std::min<double>(std::max(guess, 0.0), width));
        };
        // The last column of the blade on the vertical axis, and the first of that on the horizontal one.
        std::int32_t near = crossing(dy * slope);
        while (near > 0 && !nearAxis(near)) --near;
        while (near < width && nearAxis(near + 1)) ++near;
        std::int32_t far = std::max(crossing(dy / slope), 1);
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
