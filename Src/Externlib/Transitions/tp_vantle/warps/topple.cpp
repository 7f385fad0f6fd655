// Topple: the incoming frame slides down into the picture, unscaled, and squashes the outgoing one into the
// strip below it.
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

/// Whole pixels; the padding is not written.
void topple(const Stage& stage, const Progress& progress) {
    const std::int32_t height = stage.height();
    const std::int32_t slid = std::min(truncated(height * progress.eased()), height);
    const std::int32_t strip = height - slid;  // rows left to the outgoing frame
    for (Row row : stage.rows(Writes::pixels)) {
        // Counted from the bottom, where both frames have their first row.
        const std::int32_t up = height - 1 - row.y();
        if (strip > 0 && up < strip) {
            const auto squashed = static_cast<std::int32_t>(std::int64_t{height} * up / strip);
            row.moved(stage.row(height - 1 - squashed), Source::from, 0, stage.width());
        } else {
            row.moved(stage.row(strip + row.y()), Source::to, 0, stage.width());
        }
    }
}

}  // namespace vantle
