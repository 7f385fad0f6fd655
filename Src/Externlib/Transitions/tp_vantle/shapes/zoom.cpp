// Zoom: the outgoing frame is magnified about the centre while the incoming one, whole and reduced, grows and
// fades in over it. Pixels are the nearest ones; coordinates are truncated single-precision values.
#include <algorithm>
#include <cstdlib>
#include <optional>

#include "frame/progress.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// Columns whose source columns are worked out at a time, to be used in every row.
constexpr std::int32_t tileColumns = 3840;

/// Where a coordinate lies in a frame of this size that is shown `scale` times as large about its centre.
/// Beyond 2^24 single precision rounds the last one to the size itself.
std::int32_t sourceOf(std::int32_t coordinate, std::int32_t size, float scale) {
    const std::int32_t centre = size / 2;
    const auto middle = static_cast<float>(centre);
    return std::min(static_cast<std::int32_t>(static_cast<float>(coordinate - centre) / scale + middle),
                    size - 1);
}

}  // namespace

/// Byte 3 and the padding are not written.
void zoom(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const std::int32_t height = stage.height();
    if (progress.ended()) {
        for (Row row : stage.rows()) row.colours(Source::to, Fourth::kept, width);
        return;
    }
    const auto s = static_cast<float>(progress.linear());
    const float magnification = 20.0F * s + 1.0F;
    const float opacity = std::min(3.0F * s, 1.0F);
    const auto shownWidth = static_cast<std::int32_t>(static_cast<float>(width) * s);
    const auto shownHeight = static_cast<std::int32_t>(static_cast<float>(height) * s);
    const std::int32_t centreColumn = width / 2;
    const std::int32_t centreRow = height / 2;
    const std::int32_t halfColumns = shownWidth / 2;

    for (std::int32_t first = 0; first < width; first += tileColumns) {
        const std::int32_t end = std::min(first + tileColumns, width);
        const std::int32_t left = std::clamp(centreColumn - halfColumns + 1, first, end);
        const std::int32_t right = std::clamp(centreColumn + halfColumns, left, end);
        std::int32_t fromColumns[tileColumns];
        std::int32_t toColumns[tileColumns];
        for (std::int32_t x = first; x < end; ++x) fromColumns[x - first] = sourceOf(x, width, magnification);
        for (std::int32_t x = left; x < right; ++x) toColumns[x - first] = sourceOf(x, width, s);
        std::uint32_t magnified[tileColumns];  // a row of imgFrom, which many rows show
        std::optional<std::int32_t> magnifiedRow;
        for (Row row : stage.rows()) {
            const std::int32_t next = stage.after(row.y());
            const std::int32_t sourceRow = sourceOf(row.y(), height, magnification);
            if (magnifiedRow != sourceRow) {
                Row::Samples{stage.row(sourceRow), Source::from, fromColumns, first}
                    .before(stage.row(stage.after(sourceRow)), end)
                    .gather(magnified, end);
                magnifiedRow = sourceRow;
            }
            row.skip(first);
            if (std::abs(row.y() - centreRow) < shownHeight / 2 && shownWidth >= 6) {
                const Row shown = stage.row(sourceOf(row.y(), height, s));
                const Row::Samples reduced =
                    Row::Samples{shown, Source::to, toColumns + (left - first), left}.before(
                        stage.row(sourceOf(next, height, s)), right);
                row.painted(magnified, first, left);
                if (opacity < 1.0F)
                    row.faded(reduced, magnified + (left - first), opacity, right);
                else
                    row.sampled(reduced, right);
            }
            row.painted(magnified, first, end);
        }
    }
}

}  // namespace vantle
