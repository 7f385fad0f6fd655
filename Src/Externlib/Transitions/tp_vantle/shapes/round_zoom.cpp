// Round zooms: one frame inside a disc about the centre of the frame. The twins share their radius and their
// soft rim; they differ in the bytes they write, in the arithmetic and in what lies under them.
#include <cmath>

#include "frame/disc.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

constexpr std::int32_t rim = 100;

double diagonal(const Stage& stage) {
    const double width = stage.width();
    const double height = stage.height();
    return std::sqrt(width * width + height * height);
}

/// The share of 255 that the disc's frame has at the end of each pixel of the rim, from the circle inward.
constexpr std::int32_t rimWeight(std::int32_t depth) { return std::clamp(depth, 0, rim) * 255 / rim; }

/// One row of the disc: columns of the solid part and of the whole disc about the centre column; empty when
/// the last is before the first.
struct Chord {
    std::int32_t solidFirst, solidLast, first, last;

    Chord(std::int32_t radius, std::int32_t centreColumn, std::int32_t dy) {
        const std::int64_t below = std::int64_t{dy} * dy;
        const std::int64_t solidRadius = radius - rim + 1;  // what is nearer than this is solid
        const std::int32_t solid = radius >= rim ? wholeRoot(solidRadius * solidRadius - 1 - below) : -1;
        const std::int32_t whole = wholeRoot(std::int64_t{radius} * radius - below);
        // An empty chord has its end at the centre column, so that runs may be given in order.
        solidFirst = solid < 0 ? centreColumn : centreColumn - solid;
        solidLast = solid < 0 ? centreColumn - 1 : centreColumn + solid;
        first = whole < 0 ? centreColumn : centreColumn - whole;
        last = whole < 0 ? centreColumn - 1 : centreColumn + whole;
    }
};

double largestRadius(const Stage& stage) { return diagonal(stage) * 0.5 + 0.5 + 100.0; }

/// Draws a disc of one frame over the other, with its rim by the truncated distance.
void drawRimmedDisc(const Stage& stage, Writes writes, Division division, Source inside, std::int32_t radius,
                    const DistanceTable& table) {
    const Source outside = inside == Source::to ? Source::from : Source::to;
    const std::int32_t centreColumn = (stage.width() + 1) / 2;
    const std::int32_t centreRow = (stage.height() + 1) / 2;
    for (Row row : stage.rows(writes)) {
        const std::int32_t dy = row.y() - centreRow;
        const Chord chord(radius, centreColumn, dy);
        const auto rimUpTo = [&](std::int32_t end) {
            drawByDistance(row, centreColumn, dy, end, DistanceRounding::truncated, table,
                           [&](const Columns<Weight>& weights, std::int32_t stretchEnd) {
                               row.mix(weights, stretchEnd, division);
                           });
        };
        row.show(outside, chord.first);
        rimUpTo(chord.solidFirst);
        row.show(inside, chord.solidLast + 1);
        rimUpTo(chord.last + 1);
        row.showRest(outside);
    }
}

}  // namespace

/// "Round_zoom_out": a growing disc of the incoming frame, all bytes, in single precision.
void roundZoomIn(const Stage& stage, const Progress& progress) {
    const std::int32_t radius = truncated(largestRadius(stage) * progress.linear());
    const DistanceTable table(radius + 1,
                              [=](std::int32_t distance) { return rimWeight(radius - distance); });
    drawRimmedDisc(stage, Writes::pixels, Division::single, Source::to, radius, table);
}

/// "Round_zoom_in": a shrinking disc of the outgoing frame over the incoming one, whose byte 3 stays.
void roundZoomOut(const Stage& stage, const Progress& progress) {
    const std::int32_t radius = truncated(largestRadius(stage) * progress.linearLeft());
    const DistanceTable table(radius + 1,
                              [=](std::int32_t distance) { return 255 - rimWeight(radius - distance); });
    drawRimmedDisc(stage, Writes::coloursOverTo, Division::by255, Source::from, radius, table);
}

/// A disc that grows to half the diagonal and shrinks again; in it the incoming frame's share grows with the
/// distance from the centre. Byte 3 and the padding are not written.
void roundZoomIn2(const Stage& stage, const Progress& progress) {
    const double t = progress.linear();
    const Source outside = t < 0.5 ? Source::from : Source::to;
    const std::int32_t limit = truncated((diagonal(stage) + 0.5) * (t < 0.5 ? t : 1.0 - t));
    const double scale = rounded(diagonal(stage) * 0.5);
    const DistanceTable table(limit,
                              [=](std::int32_t distance) { return truncated(distance / scale * 255.0); });
    drawDisc(stage, Writes::colours, outside, table, [=](std::int32_t dy) {
        // Distances up to limit - 1 have squares up to limit^2 - limit.
        const std::int64_t square = std::int64_t{limit} * limit - limit - std::int64_t{dy} * dy;
        return limit > 0 ? wholeRoot(square) : -1;
    });
}

}  // namespace vantle
