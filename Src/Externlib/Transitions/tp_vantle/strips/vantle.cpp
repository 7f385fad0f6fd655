// Vantles: the incoming frame appears in place in interleaved bands, which grow from opposite edges in turn.
#include "frame/columns.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// Bands of columns that show `even` and `odd` in turn, up to column `end`.
void showBands(Row& row, Source even, Source odd, const Columns<Weight>& evenBands, std::int32_t end) {
    if (even == odd)
        row.show(even, end);
    else
        row.choose(evenBands, end, even);
}

}  // namespace

/// Bands of rows: even ones open from the left edge, odd ones from the right.
void rowVantle(const Stage& stage, const Progress& progress) {
    const std::int32_t opened = progress.easedSize(stage.width());
    const std::int32_t band = std::max(truncated(10.0 * stage.height() / 320.0), 1);
    for (Row row : stage.rows(Writes::pixels)) {
        if (row.y() / band % 2 == 0)
            row.to(opened).fromRest();
        else
            row.fromAllBut(opened).toRest();
    }
}

/// Bands of columns: even ones open from the top edge, odd ones from the bottom. Padding is not written.
void colVantle(const Stage& stage, const Progress& progress) {
    const std::int32_t height = stage.height();
    const std::int32_t opened = rounded(easeCubic(progress.linear()) * height);
    const auto tenWidths = static_cast<float>(std::int64_t{10} * stage.width());
    const std::int32_t band = std::max(truncated(tenWidths / 640.0F), 1);
    PerColumn evenBands([=](std::int32_t x) { return x / band % 2 == 0; });
    for (Row row : stage.rows(Writes::pixels)) {
        const Source even = row.y() < opened ? Source::to : Source::from;
        const Source odd = height - 1 - row.y() < opened ? Source::to : Source::from;
        showBands(row, even, odd, evenBands(row), stage.width());
    }
}

/// Both at once, in bands of ten pixels: a pixel that either pattern has reached shows the incoming frame.
void crossVantle(const Stage& stage, const Progress& progress) {
    constexpr std::int32_t band = 10;
    const std::int32_t width = stage.width();
    const std::int32_t height = stage.height();
    const std::int32_t openedColumns = progress.easedSize(width);
    const std::int32_t openedRows = progress.easedSize(height);
    PerColumn evenBands([=](std::int32_t x) { return x / band % 2 == 0; });
    for (Row row : stage.rows(Writes::pixels)) {
        const Source even = row.y() < openedRows ? Source::to : Source::from;
        const Source odd = height - 1 - row.y() < openedRows ? Source::to : Source::from;
        const std::int32_t left = row.y() / band % 2 == 0 ? 0 : width - openedColumns;
        showBands(row, even, odd, evenBands(row), left);
        row.to(left + openedColumns);
        showBands(row, even, odd, evenBands(row), width);
        row.fromRest();
    }
}

}  // namespace vantle
