// Twirl: the outgoing frame turns once clockwise about the centre while it shrinks, on black, to a twentieth;
// then the incoming one turns once more and grows from there.
#include <cmath>
#include <optional>

#include "frame/crossing.h"
#include "frame/multiversion.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// One dimension of the shrunken picture, upright and centred in the frame.
struct Extent {
    std::int32_t size, first, end;
    float scale;
    Extent(std::int32_t frameSize, float shownScale)
        : size(frameSize),
          first((size - truncated(static_cast<float>(size) * shownScale)) >> 1),
          end(first + truncated(static_cast<float>(size) * shownScale)),
          scale(shownScale) {}

    std::int32_t clampedIn(double at) const { return std::clamp(static_cast<std::int32_t>(at), 0, size - 1); }

    /// The frame's own row or column that is shown at `at`, which lies inside.
    std::int32_t sourceOf(std::int32_t at) const {
        return std::min(static_cast<std::int32_t>(static_cast<float>(at - first) / scale), size - 1);
    }
};

/// Where the pixels of one row lie before the turn, by their distance from the centre column.
struct TurnedRow {
    double cosine, sine;
    double column, row;  // of the pixel in the centre column; the row without the centre's
    double centreRow;

    double columnAt(double dx) const { return cosine * dx + column; }
    double rowAt(double dx) const { return row - sine * dx + centreRow; }
};

struct Span {
    std::int32_t first, end;
};

/// A row in the making, whose picture ends before column `end`.
struct Line {
    Row row;
    TurnedRow turned;
    std::int32_t end;
};

/// The columns 0 to `width` - 1 whose coordinate `at(x)`, which only rises or only falls, lies inside.
template <typename At>
Span columnsInside(std::int32_t width, const Extent& extent, bool rising, At at) {
    const auto coordinate = [&](std::int32_t x) { return extent.clampedIn(at(x)); };
    const std::int32_t above =
        crossing(0, width, [&](std::int32_t x) { return (coordinate(x) > extent.first) == rising; });
    const std::int32_t below =
        crossing(0, width, [&](std::int32_t x) { return (coordinate(x) < extent.end) != rising; });
    return rising ? Span{above, below} : Span{below, above};
}

}  // namespace

/// Where in the frame, whose rows lie `rowBytes` apart, the sources of `count` pixels from distance `dx` on
/// are.
VANTLE_MULTIVERSION static void findSources(std::ptrdiff_t* offsets, const Extent& across, const Extent& down,
                                            const TurnedRow& turned, std::int32_t rowBytes, std::int32_t dx,
                                            std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t column = across.sourceOf(across.clampedIn(turned.columnAt(dx + i)));
        const std::int32_t row = down.sourceOf(down.clampedIn(turned.rowAt(dx + i)));
        offsets[i] = std::ptrdiff_t{rowBytes} * row + std::ptrdiff_t{4} * column;
    }
}

/// The picture of `source` turned clockwise by `angle` and scaled, on black. A turned row crosses the memory
/// of its source; drawn in blocks of rows and columns, neighbours find what they need still at hand.
static void drawTurned(const Stage& stage, Source source, double angle, float scale) {
    const std::int32_t width = stage.width();
    const Extent across(width, scale);
    const Extent down(stage.height(), scale);
    const std::int32_t centreColumn = width >> 1;
    const std::int32_t centreRow = stage.height() >> 1;
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    constexpr std::int32_t blockRows = 64;
    constexpr std::int32_t blockColumns = 512;
    const Stage::Rows all = stage.rows();
    for (Stage::RowIterator next = all.begin(); next != all.end();) {
        std::optional<Line> lines[blockRows];
        std::int32_t count = 0;
        for (; count < blockRows && next != all.end(); ++next) {
            Row row = *next;
            const double dy = row.y() - centreRow;
            const TurnedRow turned{cosine, sine, static_cast<double>(truncated(sine * dy + centreColumn)),
                                   static_cast<double>(truncated(cosine * dy)),
                                   static_cast<double>(centreRow)};
            const Span columns = columnsInside(width, across, cosine >= 0.0, [&](std::int32_t x) {
                return turned.columnAt(x - centreColumn);
            });
            const Span rows = columnsInside(width, down, sine <= 0.0,
                                            [&](std::int32_t x) { return turned.rowAt(x - centreColumn); });
            row.black(std::max(columns.first, rows.first));
            lines[count++].emplace(Line{row, turned, std::min(columns.end, rows.end)});
        }
        for (std::int32_t blockEnd = 0; blockEnd < width;) {
            blockEnd = std::min(blockEnd + blockColumns, width);
            // Sources are found a line ahead: what has just been stored is slow to load in smaller parts.
            std::ptrdiff_t offsets[2][blockColumns];
            Row* found = nullptr;
            std::int32_t foundEnd = 0;
            std::int32_t turn = 0;
            for (std::int32_t i = 0; i < count; ++i) {
                auto& [row, turned, lineEnd] = *lines[i];
                const std::int32_t end = std::min(blockEnd, lineEnd);
                if (row.x() >= end) continue;
                findSources(offsets[turn], across, down, turned, stage.rowBytes(), row.x() - centreColumn,
                            end - row.x());
                turn = 1 - turn;
                if (found != nullptr) found->picked(source, offsets[turn], foundEnd);
                found = &row;
                foundEnd = end;
            }
            if (found != nullptr) found->picked(source, offsets[1 - turn], foundEnd);
        }
        for (std::int32_t i = 0; i < count; ++i) lines[i]->row.black(width);
    }
}

/// Whole pixels on black, whose byte 3 is not written, nor is the padding but at the very end.
void twirl(const Stage& stage, const Progress& progress) {
    constexpr double pi = 3.141592653589793;
    constexpr double shrunk = 0.05F;
    constexpr double rest = 0.95F;
    if (progress.ended()) {
        for (Row row : stage.rows()) row.toRest();
        return;
    }
    const double position = progress.position();
    if (progress.duration() == position + position) {
        for (Row row : stage.rows()) row.black(stage.width());
        return;
    }
    const double half = progress.duration() * 0.5;
    const bool firstHalf = progress.duration() > position + position;
    const double passed = firstHalf ? position : position - half;
    const double angle = (passed / half + passed / half) * pi;
    const double grown = firstHalf ? half - position : passed;
    const auto scale = static_cast<float>(grown * rest / half + shrunk);
    drawTurned(stage, firstHalf ? Source::from : Source::to, angle, scale);
}

}  // namespace vantle
