/// Distances of pixels from a point, for effects that are drawn in circles.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/pixels.h"
#include "frame/stage.h"

namespace vantle {

enum class DistanceRounding : std::uint8_t { truncated, nearest };

/// Weights that depend on the distance alone, worked out once for distances 0 to `count` - 1. Those beyond
/// the table, which only frames of more than 2^31 squared pixels of diagonal have, weigh as its last.
class DistanceTable {
   public:
    template <typename WeightAt>
    DistanceTable(std::int32_t count, WeightAt weightAt) : last_(std::clamp(count, 1, size) - 1) {
        for (std::int32_t distance = 0; distance <= last_; ++distance)
            weights_[distance] = Weight(weightAt(distance));
    }
    std::int32_t last() const { return last_; }
    const Weight* weights() const { return weights_; }

   private:
    static constexpr std::int32_t size = 1 << 15;
    std::int32_t last_;
    Weight weights_[size];
};

/// weights[i] = the table's weight for the whole distance of the point (dx + i, dy) from the origin.
void weightsByDistance(Weight* weights, std::int32_t dx, std::int32_t dy, std::int32_t count,
                       DistanceRounding rounding, const DistanceTable& table);

/// The largest whole number whose square is at most `square`; -1 for a negative one.
std::int32_t wholeRoot(std::int64_t square);

/// Draws a row up to column `end`: calls `draw(weights, end)` for a stretch of columns at a time, with
/// weights by their distance from the point `dy` rows away in column `centre`.
template <typename Draw>
void drawByDistance(Row& row, std::int32_t centre, std::int32_t dy, std::int32_t end,
                    DistanceRounding rounding, const DistanceTable& table, Draw draw) {
    constexpr std::int32_t reach = 2048;
    Weight weights[2 * reach];
    Weight* const middle = weights + reach;
    // Both sides of the centre weigh the same: worked out once where the row is not too long.
    if (row.x() > centre - reach && row.x() < centre && end > centre && end <= centre + reach) {
        const std::int32_t side = std::max(centre - row.x(), end - centre - 1);
        weightsByDistance(middle, 0, dy, std::min(side + 1, reach), rounding, table);
        for (std::int32_t i = 1; i <= centre - row.x(); ++i) middle[-i] = middle[i];
        draw(middle - (centre - row.x()), end);
        return;
    }
    while (row.x() < end) {
        const std::int32_t stretchEnd = std::min(row.x() + 2 * reach, end);
        weightsByDistance(weights, row.x() - centre, dy, stretchEnd - row.x(), rounding, table);
        draw(weights, stretchEnd);
    }
}

}  // namespace vantle
