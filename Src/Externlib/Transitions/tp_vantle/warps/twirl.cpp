// Twirl: the outgoing frame turns once clockwise about the centre while it shrinks, on black, to a twentieth;
// then the incoming one turns once more and grows from there.
#include <cmath>

#include "frame/crossing.h"
#include "frame/multiversion.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

using namespace vantle;

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

namespace vantle {

/// The sources of `count` pixels from distance `dx` on.
VANTLE_MULTIVERSION static void findSources(std::int32_t* columns, std::int32_t* rows, const Extent& across,
                                            const Extent& down, const TurnedRow& turned, std::int32_t dx,
                                            std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        columns[i] = across.sourceOf(across.clampedIn(turned.columnAt(dx + i)));
        rows[i] = down.sourceOf(down.clampedIn(turned.rowAt(dx + i)));
    }
}

}  // namespace vantle

/// Whole pixels on black, whose byte 3 is not written, nor is the padding but at the very end.
VANTLE_API void TrTwrl(DIImage imgOut, DIImage imgFrom, DIImage imgTo, const TransParam* param) {
    constexpr double pi = 3.141592653589793;
    constexpr double shrunk = 0.05F;
    constexpr double rest = 0.95F;
    const Stage stage(imgOut, imgFrom, imgTo);
    if (!stage.drawable()) return;
    if (hasEnded(param)) {
        for (Row row : stage.rows()) row.toRest();
        return;
    }
    const Progress progress(param);
    const double position = progress.position();
    const double half = progress.duration() * 0.5;
    const bool firstHalf = progress.duration() > position + position;
    const bool midpoint = progress.duration() == position + position;
    const double passed = firstHalf ? position : position - half;
    const double angle = (passed / half + passed / half) * pi;
    const double grown = firstHalf ? half - position : passed;
    const auto scale = static_cast<float>(grown * rest / half + shrunk);

    const std::int32_t width = stage.width();
    const Extent across(width, scale);
    const Extent down(stage.height(), scale);
    const std::int32_t centreColumn = width >> 1;
    const std::int32_t centreRow = stage.height() >> 1;
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    for (Row row : stage.rows()) {
        const double dy = row.y() - centreRow;
        const TurnedRow turned{cosine, sine, static_cast<double>(truncated(sine * dy + centreColumn)),
                               static_cast<double>(truncated(cosine * dy)), static_cast<double>(centreRow)};
        const Span columns = columnsInside(width, across, cosine >= 0.0,
                                           [&](std::int32_t x) { return turned.columnAt(x - centreColumn); });
        const Span rows = columnsInside(width, down, sine <= 0.0,
                                        [&](std::int32_t x) { return turned.rowAt(x - centreColumn); });
        row.black(std::max(columns.first, rows.first));
        const std::int32_t end = midpoint ? 0 : std::min(columns.end, rows.end);
        while (row.x() < end) {
            constexpr std::int32_t tile = 256;
            const std::int32_t count = std::min(end - row.x(), tile);
            std::int32_t sourceColumns[tile];
            std::int32_t sourceRows[tile];
            findSources(sourceColumns, sourceRows, across, down, turned, row.x() - centreColumn, count);
            row.picked(firstHalf ? Source::from : Source::to, sourceColumns, sourceRows, row.x() + count);
        }
        row.black(width);
    }
}
