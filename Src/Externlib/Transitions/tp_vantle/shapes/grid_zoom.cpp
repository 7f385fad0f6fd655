// Grid zooms: in every cell of a grid a centred square grows or shrinks, linearly and by two pixels at a
// time. Cells start at the left column and the bottom row of the picture.
#include "frame/columns.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// A tenth of the height, raised to an even number, at least 2.
std::int32_t cellSize(const Stage& stage) {
    const std::int32_t tenth = truncated(stage.height() * 0.1);
    return std::max(tenth + tenth % 2, 2);
}

/// The squares have side + 1 pixels on each side (`side` is even) and lie about the middle of their cells.
struct Squares {
    std::int32_t cell;
    std::int32_t first;  // of a cell's rows and columns
    std::int32_t last;
    Squares(std::int32_t cellSide, std::int32_t side)
        : cell(cellSide), first((cellSide - side) / 2), last(first + side) {}

    bool has(std::int32_t place) const { return place % cell >= first && place % cell <= last; }
    bool crosses(const Stage& stage, const Row& row) const { return has(stage.height() - 1 - row.y()); }
};

}  // namespace

/// Squares of the incoming frame grow from a pixel; byte 3 stays.
void gridZoomIn(const Stage& stage, const Progress& progress) {
    const double t = progress.linear();
    const std::int32_t cell = cellSize(stage);
    const std::int32_t side = truncated(t * cell);
    const Squares squares(cell, side + side % 2);
    drawColumns(
        stage, 0, stage.width(), cell, [=](std::int32_t x) { return squares.has(x) ? 255 : 0; },
        [&](Row& row, const Weight* weights, std::int32_t first, std::int32_t end) {
            if (t >= 0.001 && squares.crosses(stage, row))
                row.wovenColours(weights, first, end);
            else
                row.from(end);
            if (end == stage.width()) row.fromRest();
        });
}

/// The outgoing frame shrinks into squares, to a pixel each; byte 3 stays but at the very end.
void gridZoomOut(const Stage& stage, const Progress& progress) {
    const std::int32_t cell = cellSize(stage);
    const std::int32_t side = truncated(cell * progress.linearLeft());
    const Squares squares(cell, side - side % 2);
    if (progress.linear() > 0.999) {
        for (Row row : stage.rows()) row.toRest();
        return;
    }
    drawColumns(
        stage, 0, stage.width(), cell, [=](std::int32_t x) { return squares.has(x) ? 0 : 255; },
        [&](Row& row, const Weight* weights, std::int32_t first, std::int32_t end) {
            if (squares.crosses(stage, row))
                row.wovenColours(weights, first, end);
            else
                row.toColours(end);
            if (end == stage.width()) row.fromRest();
        });
}

}  // namespace vantle
