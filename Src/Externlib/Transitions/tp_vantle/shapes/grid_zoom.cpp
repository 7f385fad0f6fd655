// Grid zooms: in every cell of a grid a centred square grows or shrinks, linearly and by two pixels at a
// time. Cells start at the left column and the bottom row of the picture.
#include "frame/columns.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

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
    const std::int32_t cell = evenTenth(stage.height());
    const std::int32_t side = truncated(t * cell);
    const Squares squares(cell, side + side % 2);
    PerColumn inside([=](std::int32_t x) { return squares.has(x); });
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        if (t >= 0.001 && squares.crosses(stage, row)) row.choose(inside(row), stage.width());
        row.fromRest();
    }
}

/// The outgoing frame shrinks into squares, to a pixel each; byte 3 stays but at the very end.
void gridZoomOut(const Stage& stage, const Progress& progress) {
    const std::int32_t cell = evenTenth(stage.height());
    const std::int32_t side = truncated(cell * progress.linearLeft());
    const Squares squares(cell, side - side % 2);
    if (progress.linear() > 0.999) {
        stage.show(Source::to);
        return;
    }
    PerColumn outside([=](std::int32_t x) { return !squares.has(x); });
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        if (squares.crosses(stage, row)) row.choose(outside(row), stage.width());
        row.toRest();
    }
}

}  // namespace vantle
