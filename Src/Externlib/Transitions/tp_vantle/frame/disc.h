/// Effects that are drawn in circles about a pixel.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "frame/pixels/distance.h"
#include "frame/stage.h"

namespace vantle {

/// Draws a row up to column `end`: calls `draw(weights, end)` for a stretch of columns at a time, with
/// weights by their distance from the point `dy` rows away in column `centre`.
template <typename Draw>
void drawByDistance(Row& row, std::int32_t centre, std::int32_t dy, std::int32_t end,
                    DistanceRounding rounding, const DistanceTable& table, Draw draw) {
    constexpr std::int32_t stretch = 1024;
    Weight weights[stretch];
    const std::int32_t last = std::min(end, row.columns().end);
    while (row.x() < last) {
        const std::int32_t first = row.x();
        const std::int32_t stretchEnd = std::min(first + stretch, last);
        weightsByDistance(weights, stretch, 1, first - centre, dy, stretchEnd - first, rounding, table);
        draw(Columns<Weight>{weights, first}, stretchEnd);
    }
}

/// Draws a disc by the rounded distance from the pixel right of and below the middle of the frame: in a row
/// `dy` away from it the `halfAt(dy)` columns on either side, none when negative, are mixed by their weights,
/// the others show `outside`; `halfAt` only falls. Points that mirror each other weigh the same, and their
/// weights are worked out once, for a few rows at a time: memory is fast to read when rows follow in its
/// order.
template <typename HalfAt>
void drawDisc(const Stage& stage, Writes writes, Source outside, const DistanceTable& table, HalfAt halfAt) {
    constexpr std::int32_t reach = 2048;
    constexpr std::int32_t band = 8;
    const std::int32_t centreColumn = (stage.width() + 1) / 2;
    const std::int32_t centreRow = (stage.height() + 1) / 2;
    const auto sideAt = [&](std::int32_t dy) { return std::min(halfAt(dy), centreColumn); };
    Weight quarter[band][reach];  // from the centre column on
    std::int32_t bandFirst = -1;  // nearest row of those whose weights are at hand
    for (Row row : stage.rows(writes)) {
        const std::int32_t dy = std::abs(row.y() - centreRow);
        const std::int32_t near = dy / band * band;
        if (near != bandFirst) {
            bandFirst = near;
            weightsByDistance(*quarter, reach, band, 0, near, std::min(sideAt(near) + 1, reach),
                              DistanceRounding::nearest, table);
        }
        if (const std::int32_t side = sideAt(dy); side >= 0) {
            const std::int32_t end = centreColumn + side + 1;
            row.show(outside, centreColumn - side);
            if (side < reach) {
                const Weight* const right = quarter[dy - near];
                Weight weights[2 * reach];
                mirror(weights, right + 1, side);
                std::copy_n(right, side + 1, weights + side);
                row.mix(Columns<Weight>{weights, centreColumn - side}, end);
            } else {
                drawByDistance(
                    row, centreColumn, dy, end, DistanceRounding::nearest, table,
                    [&](const Columns<Weight>& far, std::int32_t farEnd) { row.mix(far, farEnd); });
            }
        }
        row.showRest(outside);
    }
}

}  // namespace vantle
