#include "warps/turn.h"

#include "frame/multiversion.h"

namespace vantle {

namespace {

/// Coordinates are truncated twice, which puts a pixel up to this far from the middle of where it came from.
constexpr double truncation = 1.5;

/// The picture's pixels between two opposite edges of a block: in a row v below the centre, from `low` +
/// `slope` * v right of the centre on, for `length`.
struct Between {
    double low, slope, length;

    /// Edges at `at` and `at` + `size` of the coordinate that grows by `along` with each column and falls by
    /// `across` with each row.
    Between(double along, double across, double at, double size) {
        constexpr double everything = 1e9;
        // What is truncated in both dimensions is off by the diagonal at most.
        constexpr double off = truncation * 1.42;
        const bool crosses = std::abs(along) > 1e-3;
        low = crosses ? (along > 0.0 ? at - off : at + size + off) / along : -everything;
        slope = crosses ? across / along : 0.0;
        length = crosses ? (size + 2.0 * off) / std::abs(along) : 2.0 * everything;
    }
};

/// Whole pixels of the picture from `low` to `low` + `length`.
Span within(const Extent& extent, double low, double length) {
    const double first = extent.first;
    const double end = extent.end;
    return {static_cast<std::int32_t>(std::clamp(std::floor(low), first, end)),
            static_cast<std::int32_t>(std::clamp(std::floor(low + length) + 1.0, first, end))};
}

}  // namespace

VANTLE_MULTIVERSION static void findSources(std::int32_t* sources, const Extent& extent, const Span& span) {
    for (std::int32_t i = 0; i < span.end - span.first; ++i) sources[i] = extent.sourceOf(span.first + i);
}

VANTLE_MULTIVERSION static void findNeeded(Part& part, const Turn& turn, const Between& sides,
                                           const Between& ends) {
    // Of pixels, the middles are meant.
    const double centreColumn = turn.centreColumn - 0.5;
    const double centreRow = turn.centreRow - 0.5;
    const double first = part.columns.first;
    const double end = part.columns.end;
    const std::int32_t rows = part.rowCount();
    for (std::int32_t i = 0; i < rows; ++i) {
        const double v = part.rows.first + i - centreRow;
        const double side = sides.low + sides.slope * v + centreColumn;
        const double top = ends.low + ends.slope * v + centreColumn;
        const double last = std::min(side + sides.length, top + ends.length);
        part.first[i] = static_cast<std::int32_t>(std::min(std::max(std::max(side, top), first), end));
        part.end[i] = static_cast<std::int32_t>(std::max(std::min(last + 1.0, end), first));
    }
}

std::int32_t blockSize(const Turn& turn) {
    constexpr double most = patchSide - 2.0 * truncation - 2.0;
    return static_cast<std::int32_t>(most / turn.growth()) / 8 * 8;
}

void findPart(Part& part, const Extent& across, const Extent& down, const Turn& turn, std::int32_t left,
              std::int32_t top, std::int32_t size) {
    const double cosine = turn.cosine;
    const double sine = turn.sine;
    const double x = left - turn.centreColumn;
    const double y = top - turn.centreRow;
    const double reach = size * turn.growth() + 2.0 * truncation;
    // The lowest coordinate of the block's corners, of which its first has `corner`.
    const auto lowest = [&](double corner, double perColumn, double perRow) {
        return corner + std::min(perColumn * size, 0.0) + std::min(perRow * size, 0.0) - truncation;
    };
    part.columns =
        within(across, lowest(cosine * x + sine * y, cosine, sine) + turn.centreColumn - 0.5, reach);
    part.rows = within(down, lowest(cosine * y - sine * x, -sine, cosine) + turn.centreRow - 0.5, reach);
    findSources(part.sourceColumns, across, part.columns);
    findSources(part.sourceRows, down, part.rows);
    findNeeded(part, turn, {cosine, sine, x, static_cast<double>(size)},
               {sine, -cosine, y, static_cast<double>(size)});
}

VANTLE_MULTIVERSION void findSteps(Steps& steps, const Turn& turn, std::int32_t dx, std::int32_t count) {
    // More than a double is off by near the largest coordinate.
    constexpr double margin = 1e-6;
    const auto firstColumn = static_cast<std::int32_t>(std::floor(turn.cosine * dx));
    const auto firstRow = static_cast<std::int32_t>(std::floor(-(turn.sine * dx)));
    double highest = 0.0;
    for (std::int32_t i = 0; i < count; ++i) {
        const double across = turn.cosine * (dx + i);
        const double down = -(turn.sine * (dx + i));
        const double column = std::floor(across);
        const double row = std::floor(down);
        highest = std::max(highest, std::max(across - column, down - row));
        steps.each[i] = static_cast<std::int32_t>(column) - firstColumn +
                        patchSide * (static_cast<std::int32_t>(row) - firstRow);
    }
    steps.first = placeOf(firstColumn, firstRow);
    steps.exact = highest < 1.0 - margin;
}

VANTLE_MULTIVERSION void findPlaces(std::int32_t* places, const Part& part, const TurnedRow& turned,
                                    std::int32_t dx, std::int32_t count) {
    const Span columns = part.columns;
    const Span rows = part.rows;
    for (std::int32_t i = 0; i < count; ++i)
        places[i] = static_cast<std::int32_t>(turned.columnAt(dx + i)) - columns.first +
                    patchSide * (static_cast<std::int32_t>(turned.rowAt(dx + i)) - rows.first);
}

}  // namespace vantle
