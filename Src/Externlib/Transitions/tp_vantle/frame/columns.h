/// What depends on the column alone and is the same in many rows.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/pixels.h"
#include "frame/stage.h"

namespace vantle {

/// How many columns are worked out at a time.
constexpr std::int32_t tileColumns = 4096;

/// Works out `weightAt(column)` once for columns `first` to `end` - 1, a tile of them at a time, and calls
/// `draw(row, weights, tileFirst, tileEnd)` for every row, which stands at `tileFirst`, the column of
/// `weights[0]`. Weights repeat every `period` columns.
template <typename WeightAt, typename Draw>
void drawColumns(const Stage& stage, std::int32_t first, std::int32_t end, std::int32_t period,
                 WeightAt weightAt, Draw draw) {
    for (std::int32_t tileFirst = first; tileFirst < end; tileFirst += tileColumns) {
        const std::int32_t tileEnd = std::min(tileFirst + tileColumns, end);
        const std::int32_t columns = tileEnd - tileFirst;
        Weight weights[tileColumns];
        for (std::int32_t i = 0; i < std::min(period, columns); ++i)
            weights[i] = static_cast<Weight>(weightAt(tileFirst + i));
        for (std::int32_t i = period; i < columns; ++i) weights[i] = weights[i - period];
        for (Row row : stage.rows()) draw(row.skip(tileFirst), weights, tileFirst, tileEnd);
    }
}

/// The same where they do not repeat.
template <typename WeightAt, typename Draw>
void drawColumns(const Stage& stage, std::int32_t first, std::int32_t end, WeightAt weightAt, Draw draw) {
    drawColumns(stage, first, end, end - first, weightAt, draw);
}

}  // namespace vantle
