// Diamond zooms: one frame inside a centred diamond of eased size, whole pixels. The diamond is defined
// column by column and drawn by the rows of memory.
#include <cstdlib>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// `inside` within a diamond that reaches `reach` columns from the centre, the other frame around it.
void draw(const Stage& stage, Source inside, std::int32_t reach) {
    const std::int32_t width = stage.width();
    const Source outside = inside == Source::from ? Source::to : Source::from;
    if (reach >= width || reach == 0 || width < 1) {
        stage.show(reach >= width ? inside : outside);
        return;
    }
    const std::int32_t centreColumn = (width + 1) / 2;
    const std::int32_t centreHeight = (stage.height() + 1) / 2;
    const double aspect = static_cast<double>(centreHeight) / centreColumn;
    const std::int32_t middle = stage.height() - centreHeight;
    for (Row row : stage.rows(Writes::pixels)) {
        // A column at distance d reaches round((reach - d) * aspect) rows above the middle line and to below
        // it: the largest distance that reaches this row is near the inverse, and settled with the rule
        // itself.
        const std::int32_t wanted = row.y() < middle ? middle - row.y() : row.y() - middle + 1;
        const auto reaches = [&](std::int32_t distance) {
            return rounded((reach - distance) * aspect) >= wanted;
        };
        std::int32_t distance = reach - truncated((wanted - 0.5) / aspect);
        while (distance >= 0 && !reaches(distance)) --distance;
        while (reaches(distance + 1)) ++distance;
        if (distance >= 0)
            row.show(outside, centreColumn - distance).show(inside, centreColumn + distance + 1);
        row.showRest(outside);
    }
}

}  // namespace

/// The outgoing frame in a shrinking diamond.
void diamondZoomIn(const Stage& stage, const Progress& progress) {
    draw(stage, Source::from, rounded(stage.width() * progress.easedLeft()));
}

/// The incoming frame in a growing diamond.
void diamondZoomOut(const Stage& stage, const Progress& progress) {
    draw(stage, Source::to, rounded(stage.width() * progress.eased()));
}

}  // namespace vantle
