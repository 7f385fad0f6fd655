/// Distances of pixels from a point, for effects that are drawn in circles.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frame/look_near.h"
#include "frame/pixels.h"
#include "frame/stage.h"

namespace vantle {

enum class DistanceRounding : std::uint8_t { truncated, nearest };

/// Weights that depend on the distance alone, worked out once for distances 0 to `count` - 1. Those beyond
/// the table, which only frames of more than 2^31 squared pixels of diagonal have, weigh as its last. Kept as
/// bytes: it lies on the stack, and hosts draw in threads with small ones.
class DistanceTable {
   public:
    template <typename WeightAt>
    DistanceTable(std::int32_t count, WeightAt weightAt) : last_(std::clamp(count, 1, size) - 1) {
        for (std::int32_t distance = 0; distance <= last_; ++distance)
            weights_[distance] = static_cast<std::uint8_t>(weightAt(distance));
    }
    std::int32_t last() const { return last_; }

    const std::uint8_t* weights() const { return weights_; }

   private:
    static constexpr std::int32_t size = 1 << 15;
    std::int32_t last_;
    std::uint8_t weights_[size + nearBytes];  // looked up as many at a time
};

/// weights[stride * row + i] = the table's weight for the whole distance of the point (dx + i, dy + row) from
/// the origin, for `count` points of each of some rows; of more than one only where `dy` is not negative.
void weightsByDistance(Weight* weights, std::ptrdiff_t stride, std::int32_t rows, std::int32_t dx,
                       std::int32_t dy, std::int32_t count, DistanceRounding rounding,
                       const DistanceTable& table);

/// mirrored[i] = weights[count - 1 - i].
void mirror(Weight* mirrored, const Weight* weights, std::int32_t count);

/// The largest whole number whose square is at most `square`; -1 for a negative one.
std::int32_t wholeRoot(std::int64_t square);

/// Draws a row up to column `end`: calls `draw(weights, end)` for a stretch of columns at a time, with
/// weights by their distance from the point `dy` rows away in column `centre`.
template <typename Draw>
void drawByDistance(Row& row, std::int32_t centre, std::int32_t dy, std::int32_t end,
                    DistanceRounding rounding, const DistanceTable& table, Draw draw) {
    constexpr std::int32_t stretch = 1024;
    Weight weights[stretch];
    while (row.x() < end) {
        const std::int32_t stretchEnd = std::min(row.x() + stretch, end);
        weightsByDistance(weights, stretch, 1, row.x() - centre, dy, stretchEnd - row.x(), rounding, table);
        draw(weights, stretchEnd);
    }
}

/// Draws a disc by the rounded distance from the pixel right of and below the middle of the frame: in a row
/// `dy` away from it the `halfAt(dy)` columns on either side, none when negative, as `inside(row, weights,
/// end)`, and the others as `around(row, end)`; `halfAt` only falls. Points that mirror each other weigh the
/// same, and their weights are worked out once, for a few rows at a time: rows are fast to read when
/// neighbours follow.
template <typename HalfAt, typename Inside, typename Around>
void drawDisc(const Stage& stage, const DistanceTable& table, HalfAt halfAt, Inside inside, Around around) {
    constexpr std::int32_t reach = 2048;
    constexpr std::int32_t band = 8;
    const std::int32_t width = stage.width();
    const std::int32_t centreColumn = (width + 1) / 2;
    const std::int32_t centreRow = (stage.height() + 1) / 2;
    Weight quarter[band][reach];  // from the centre column on
    const auto sideAt = [&](std::int32_t dy) { return std::min(halfAt(dy), centreColumn); };
    std::int32_t bandFirst = -1;  // nearest row of those whose weights are at hand
    for (Row row : stage.rows()) {
        const std::int32_t dy = std::abs(row.y() - centreRow);
        const std::int32_t near = dy / band * band;
        if (near != bandFirst) {
            bandFirst = near;
            weightsByDistance(*quarter, reach, band, 0, near, std::min(sideAt(near) + 1, reach),
                              DistanceRounding::nearest, table);
        }
        const std::int32_t side = sideAt(dy);
        if (side >= 0) {
            around(row, centreColumn - side);
            const std::int32_t end = std::min(centreColumn + side + 1, width);
            if (side < reach) {
                const Weight* const right = quarter[dy - near];
                Weight weights[2 * reach];
                mirror(weights, right + 1, side);
                std::copy_n(right, side + 1, weights + side);
                inside(row, weights, end);
            } else {
                drawByDistance(row, centreColumn, dy, end, DistanceRounding::nearest, table,
                               [&](const Weight* far, std::int32_t farEnd) { inside(row, far, farEnd); });
            }
        }
        around(row, width);
    }
}

}  // namespace vantle
