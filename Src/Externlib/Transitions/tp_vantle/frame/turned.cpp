#include "frame/turned.h"

#include <algorithm>
#include <utility>

#include "frame/crossing.h"
#include "frame/pixels/turned.h"

namespace vantle {

namespace {

/// How far the truncations put a pixel from the middle of where it came from, at most.
constexpr double truncation = 1.5;

/// One dimension of the scaled picture, upright and centred in the frame.
struct Extent {
    std::int32_t size, first, end;
    float scale;
    Extent(std::int32_t frameSize, float shownScale)
        : size(frameSize),
          first((size - truncated(static_cast<float>(size) * shownScale)) >> 1),
          end(first + truncated(static_cast<float>(size) * shownScale)),
          scale(shownScale) {}

    std::int32_t clampedIn(double at) const { return std::clamp(static_cast<std::int32_t>(at), 0, size - 1); }

    /// The frame's own rows or columns that are shown in a span, which lies inside.
    void findSources(std::int32_t* sources, const Span& span) const {
        vantle::findSources(sources, span.first - first, span.end - span.first, scale, size);
    }

    /// The pixels from `low` to `low` + `length`.
    Span within(double low, double length) const {
        return {static_cast<std::int32_t>(std::clamp<double>(std::floor(low), first, end)),
                static_cast<std::int32_t>(std::clamp<double>(std::floor(low + length) + 1.0, first, end))};
    }

    /// The columns 0 to `width` - 1 whose coordinate `at(x)`, which grows by `slope` with each, lies inside.
    template <typename At>
    Span columnsInside(std::int32_t width, double slope, At at) const {
        const auto coordinate = [&](std::int32_t x) { return clampedIn(at(x)); };
        const auto columnOf = [&](std::int32_t inside) { return truncated((inside - at(0)) / slope); };
        const bool rising = slope >= 0.0;
        const std::int32_t above = crossing(
            0, width, columnOf(first + 1), [&](std::int32_t x) { return (coordinate(x) > first) == rising; });
        const std::int32_t below = crossing(0, width, columnOf(end),
                                            [&](std::int32_t x) { return (coordinate(x) < end) != rising; });
        return rising ? Span{above, below} : Span{below, above};
    }
};

/// A row of the output.
struct Line {
    std::int32_t y;
    Span columns;  // that show the picture
};

/// Rows of blocks' height.
struct Band {
    Line lines[patchSide];
    std::int32_t count = 0;

    const Line* begin() const { return lines; }
    const Line* end() const { return lines + count; }
};

/// The part of the upright picture that a block shows.
struct Part {
    const Band* band = nullptr;  // that the block lies in
    std::int32_t left = 0;       // column of the output that it begins with
    Span columns{0, 0}, rows{0, 0};
    std::int32_t sourceColumns[patchSide], sourceRows[patchSide];  // the frame's, of each column and row

    Span needed[patchSide];  // of each row, from the first column

    std::int32_t rowCount() const { return rows.end - rows.first; }
};

/// Draws in square blocks, of which each is put together upright while what the next one shows is
/// prefetched.
class TurnedPicture {
   public:
    TurnedPicture(const Stage& stage, Source source, const Turn& turn, float scale)
        : stage_(stage),
          source_(source),
          turn_(turn),
          across_(stage.width(), scale),
          down_(stage.height(), scale),
          // The largest that never shows more than a patch, in whole halves of cache lines.
          size_(static_cast<std::int32_t>((patchSide - 2.0 * truncation - 2.0) / turn.growth()) / 8 * 8) {}

    /// Draws all of the frame. A block is drawn when it is known which one is to be prefetched.
    void draw() const {
        Band bands[2];
        Part parts[2];
        Band* band = &bands[0];
        Part *part = &parts[0], *next = &parts[1];
        const auto drawPart = [&] {
            if (part->band != nullptr) drawBlock(*part, *next);
            std::swap(part, next);
        };
        for (std::int32_t top = 0; top < stage_.height(); top += size_) {
            const Span shown = drawGround(*band, top);
            // Blocks begin where cache lines of the output do.
            for (std::int32_t left = shown.first / 16 * 16; left < shown.end; left += size_) {
                findPart(*next, *band, left, top);
                drawPart();
            }
            if (!shown.empty()) band = band == &bands[0] ? &bands[1] : &bands[0];
        }
        next->rows = {0, 0};
        drawPart();
    }

   private:
    /// Begins a band: draws what lies beside the picture, and tells the columns that show some of it.
    Span drawGround(Band& band, std::int32_t top) const {
        Span shown{stage_.width(), 0};
        band.count = 0;
        for (Row row : stage_.rowsOf({top, top + size_}, Writes::colours)) {
            const Span columns = columnsInside(turn_.row(row.y()));
            row.shade(source_, black, columns.first).skip(columns.end).shade(source_, black, stage_.width());
            band.lines[band.count++] = {row.y(), columns};
            if (!columns.empty())
                shown = {std::min(shown.first, columns.first), std::max(shown.end, columns.end)};
        }
        return shown;
    }

    /// The columns of a row that show the picture.
    Span columnsInside(const TurnedRow& turned) const {
        const Span across = across_.columnsInside(stage_.width(), turn_.cosine, [&](std::int32_t x) {
            return turned.columnAt(x - turn_.centreColumn);
        });
        const Span down = down_.columnsInside(stage_.width(), -turn_.sine, [&](std::int32_t x) {
            return turned.rowAt(x - turn_.centreColumn);
        });
        return {std::max(across.first, down.first), std::min(across.end, down.end)};
    }

    void findPart(Part& part, const Band& band, std::int32_t left, std::int32_t top) const {
        const double cosine = turn_.cosine, sine = turn_.sine;
        const double x = left - turn_.centreColumn, y = top - turn_.centreRow;
        const double reach = size_ * turn_.growth() + 2.0 * truncation;
        // The lowest coordinate of the block's corners, of which its first has `corner`. Of pixels, the
        // middles count.
        const auto lowest = [&](double corner, double perColumn, double perRow, double centre) {
            return corner + std::min(perColumn * size_, 0.0) + std::min(perRow * size_, 0.0) - truncation +
                   centre - 0.5;
        };
        part.band = &band;
        part.left = left;
        part.columns = across_.within(lowest(cosine * x + sine * y, cosine, sine, turn_.centreColumn), reach);
        part.rows = down_.within(lowest(cosine * y - sine * x, -sine, cosine, turn_.centreRow), reach);
        across_.findSources(part.sourceColumns, part.columns);
        down_.findSources(part.sourceRows, part.rows);
        const double half = 0.5 * size_;
        findNeeded(part, cosine * (x + half) + sine * (y + half) + turn_.centreColumn,
                   cosine * (y + half) - sine * (x + half) + turn_.centreRow);
    }

    /// Of each row of a part, what lies between all four sides of the turned block about (column, row).
    void findNeeded(Part& part, double column, double row) const {
        const auto awayFromZero = [](double slope) {
            return std::copysign(std::max(std::abs(slope), 1e-6), slope);
        };
        const double cosine = awayFromZero(turn_.cosine), sine = awayFromZero(turn_.sine);
        const double reach = 0.5 * size_ + 2.0 * truncation;
        const double first = part.columns.first;
        const auto inPart = [&](double at) {
            return static_cast<std::int32_t>(std::clamp(at - first, 0.0, part.columns.end - first));
        };
        for (std::int32_t i = 0; i < part.rowCount(); ++i) {
            const double down = part.rows.first + i - row;
            const double upright = sine / cosine * down, across = -cosine / sine * down;
            const double acrossReach = reach / std::abs(sine), uprightReach = reach / std::abs(cosine);
            part.needed[i] = {inPart(column + std::max(upright - uprightReach, across - acrossReach)),
                              inPart(column + std::min(upright + uprightReach, across + acrossReach) + 1.0)};
        }
    }

    void drawBlock(const Part& part, const Part& next) const {
        Pixel patch[patchSide * patchSide];
        for (std::int32_t row = 0; row < part.rowCount(); ++row) {
            const Span& needed = part.needed[row];
            if (!needed.empty())
                gather(patch + placeOf(needed.first, row), stage_.row(part.sourceRows[row]).pixels(source_),
                       part.sourceColumns + needed.first, needed.end - needed.first);
        }
        Steps steps;
        findSteps(steps, turn_, part.left - turn_.centreColumn, size_);
        const std::int32_t rowsPerLine = next.rowCount() / part.band->count + 1;
        std::int32_t prefetched = 0;
        for (const Line& line : *part.band) {
            for (std::int32_t end = std::min(prefetched + rowsPerLine, next.rowCount()); prefetched < end;
                 ++prefetched)
                prefetchRow(next, prefetched);
            const std::int32_t first = std::max(line.columns.first, part.left);
            const std::int32_t end = std::min(line.columns.end, part.left + size_);
            if (first >= end) continue;
            const Run run = stage_.row(line.y).skip(first).next(end);
            const TurnedRow turned = turn_.row(line.y);
            if (steps.exact) {
                const auto column = static_cast<std::int32_t>(turned.column) - part.columns.first;
                const auto row = static_cast<std::int32_t>(turned.row + turned.centreRow) - part.rows.first;
                gather(run, patch, placeOf(column, row) + steps.first, steps.each + (first - part.left));
            } else {
                std::int32_t places[patchSide];
                findPlaces(places, turned, part.columns.first, part.rows.first, first - turn_.centreColumn,
                           end - first);
                gather(run, patch, 0, places);
            }
        }
    }

    void prefetchRow(const Part& part, std::int32_t row) const {
        const Span& needed = part.needed[row];
        if (needed.empty()) return;
        const std::uint8_t* const pixels = stage_.row(part.sourceRows[row]).pixels(source_);
        const std::ptrdiff_t last = part.sourceColumns[needed.end - 1];
        for (std::ptrdiff_t column = part.sourceColumns[needed.first]; column <= last; column += linePixels)
            prefetch(pixels + 4 * column);
    }

    const Stage& stage_;
    Source source_;
    Turn turn_;
    Extent across_, down_;
    std::int32_t size_;
};

}  // namespace

void drawTurned(const Stage& stage, Source source, double angle, float scale) {
    const Turn turn{std::cos(angle), std::sin(angle), stage.width() >> 1, stage.height() >> 1};
    TurnedPicture(stage, source, turn, scale).draw();
}

}  // namespace vantle
