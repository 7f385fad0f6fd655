// Twirl: the outgoing frame turns once clockwise about the centre while it shrinks, on black, to a twentieth;
// then the incoming one turns once more and grows from there.
#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

#include "frame/crossing.h"
#include "frame/progress.h"
#include "frame/stage.h"
#include "warps/turn.h"

namespace vantle {

namespace {

/// A row of the output.
struct Line {
    std::int32_t y;
    Span columns;  ///< that show the picture
    std::int32_t sourceColumn,
        sourceRow;  ///< where in the upright picture its pixel in the centre column lies
};

/// A row of blocks.
struct Band {
    std::int32_t top;
    std::span<const Line> lines;
    Span shown;  ///< the columns in which any of them shows the picture
};

struct Block {
    const Band* band;
    std::int32_t left;
};

/// The columns 0 to `width` - 1 whose coordinate `at(x)`, which only rises or only falls, lies inside. They
/// are about where those of the row before are.
template <typename At>
Span columnsInside(std::int32_t width, const Extent& extent, bool rising, const Span& before, At at) {
    const auto coordinate = [&](std::int32_t x) { return extent.clampedIn(at(x)); };
    const std::int32_t above = crossing(0, width, rising ? before.first : before.end, [&](std::int32_t x) {
        return (coordinate(x) > extent.first) == rising;
    });
    const std::int32_t below = crossing(0, width, rising ? before.end : before.first, [&](std::int32_t x) {
        return (coordinate(x) < extent.end) != rising;
    });
    return rising ? Span{above, below} : Span{below, above};
}

/// The columns of a row inside each of the picture's two dimensions.
struct Inside {
    Span across{0, 0}, down{0, 0};
    Span both() const { return {std::max(across.first, down.first), std::min(across.end, down.end)}; }
};

/// A turned picture on black, drawn in square blocks. While one is drawn, what the next one shows is fetched.
/// Blocks follow each other along the rows of the frame that they show: where these stand rather upright,
/// some bands are drawn at a time, and below each other what lies below each other.
class Twirl {
   public:
    Twirl(const Stage& stage, Source source, const Turn& turn, float scale)
        : stage_(stage),
          source_(source),
          turn_(turn),
          across_(stage.width(), scale),
          down_(stage.height(), scale),
          size_(blockSize(turn)) {}

    void draw() const {
        const bool upright = std::abs(turn_.sine) > std::abs(turn_.cosine);
        const std::int32_t together = upright ? mostBands : 1;
        Inside inside;
        for (std::int32_t top = 0; top < stage_.height();) {
            Line lines[mostBands * patchSide];
            Band bands[mostBands];
            std::int32_t count = 0;
            Line* end = lines;
            for (; count < together && top < stage_.height(); ++count, top += size_) {
                bands[count] = findBand(inside, top, end);
                end += bands[count].lines.size();
            }
            drawBlocks({bands, static_cast<std::size_t>(count)});
        }
    }

   private:
    static constexpr std::int32_t mostBands = 4;

    /// Finds what a band shows and draws what is black. `lines` get its rows.
    Band findBand(Inside& inside, std::int32_t top, Line* lines) const {
        std::size_t count = 0;
        Span shown{stage_.width(), 0};
        for (Row row : stage_.rows(top, top + size_)) {
            const TurnedRow turned = turn_.row(row.y());
            findInside(inside, turned);
            const Span columns = inside.both();
            row.black(columns.first).skip(columns.end).black(stage_.width());
            lines[count++] = {row.y(), columns, static_cast<std::int32_t>(turned.column),
                              static_cast<std::int32_t>(turned.row + turned.centreRow)};
            if (!columns.empty())
                shown = {std::min(shown.first, columns.first), std::max(shown.end, columns.end)};
        }
        return {top, {lines, count}, shown};
    }

    /// Finds the columns of a row that lie inside, from those of the row before.
    void findInside(Inside& inside, const TurnedRow& turned) const {
        const auto find = [&](const Extent& extent, bool rising, const Span& before, auto at) {
            return columnsInside(stage_.width(), extent, rising, before,
                                 [&](std::int32_t x) { return at(x - turn_.centreColumn); });
        };
        inside.across =
            find(across_, turn_.cosine >= 0.0, inside.across, [&](double dx) { return turned.columnAt(dx); });
        inside.down =
            find(down_, turn_.sine <= 0.0, inside.down, [&](double dx) { return turned.rowAt(dx); });
    }

    /// Bands below each other, as far as they show anything. Blocks begin where lines of the output do.
    void drawBlocks(std::span<const Band> bands) const {
        Span shown{stage_.width(), 0};
        for (const Band& band : bands)
            shown = {std::min(shown.first, band.shown.first), std::max(shown.end, band.shown.end)};
        Part parts[2];
        Part* part = &parts[0];
        Part* next = &parts[1];
        Block block{nullptr, 0};
        for (std::int32_t left = shown.first / linePixels * linePixels; left < shown.end; left += size_)
            for (const Band& band : bands) {
                if (left >= band.shown.end || left + size_ <= band.shown.first) continue;
                findPart(*next, across_, down_, turn_, left, band.top, size_);
                if (block.band != nullptr) drawBlock(block, *part, *next);
                block = {&band, left};
                std::swap(part, next);
            }
        next->rows = {0, 0};
        if (block.band != nullptr) drawBlock(block, *part, *next);
    }

    void drawBlock(const Block& block, const Part& part, const Part& next) const {
        std::uint32_t patch[patchSide * patchSide];
        for (std::int32_t row = 0; row < part.rowCount(); ++row)
            withSamples(part, row, [&](const Row::Samples& samples, std::ptrdiff_t place) {
                samples.gather(patch + place, part.end[row]);
            });
        const std::int32_t left = block.left;
        Steps steps;
        findSteps(steps, turn_, left - turn_.centreColumn, size_);
        const std::span<const Line> lines = block.band->lines;
        const std::int32_t rowsPerLine = next.rowCount() / static_cast<std::int32_t>(lines.size()) + 1;
        std::int32_t fetched = 0;
        for (const Line& line : lines) {
            const std::int32_t fetchedEnd = std::min(fetched + rowsPerLine, next.rowCount());
            for (; fetched < fetchedEnd; ++fetched)
                withSamples(next, fetched, [&](const Row::Samples& samples, std::ptrdiff_t) {
                    samples.fetch(next.end[fetched]);
                });
            const std::int32_t first = std::max(line.columns.first, left);
            const std::int32_t end = std::min(line.columns.end, left + size_);
            if (first >= end) continue;
            Row row = stage_.row(line.y).skip(first);
            if (steps.exact) {
                const std::ptrdiff_t leftmost =
                    placeOf(line.sourceColumn, line.sourceRow) + steps.first - part.place();
                row.picked(patch, leftmost, steps.each + (first - left), end);
            } else {
                std::int32_t places[patchSide];
                findPlaces(places, part, turn_.row(line.y), first - turn_.centreColumn, end - first);
                row.picked(patch, 0, places, end);
            }
        }
    }

    /// Calls `use(samples, place)` with those of a part's row that are needed, if any, and the place of the
    /// first in a patch.
    template <typename Use>
    void withSamples(const Part& part, std::int32_t row, Use use) const {
        const std::int32_t first = part.first[row];
        const std::int32_t skipped = first - part.columns.first;
        if (first < part.end[row])
            use(Row::Samples{stage_.row(part.sourceRows[row]), source_, part.sourceColumns + skipped, first},
                placeOf(skipped, row));
    }

    const Stage& stage_;
    Source source_;
    Turn turn_;
    Extent across_, down_;
    std::int32_t size_;
};

}  // namespace

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
    const Turn turn{std::cos(angle), std::sin(angle), stage.width() >> 1, stage.height() >> 1};
    Twirl(stage, firstHalf ? Source::from : Source::to, turn, scale).draw();
}

}  // namespace vantle
