// Rectangle zooms: one frame inside a centred rectangle whose size is linear. The twins differ in their
// centre and in how the incoming pixels are written.
#include <cstdlib>

#include "frame/progress.h"
#include "frame/stage.h"

namespace vantle {

/// The outgoing frame in a shrinking rectangle; around it the incoming one, a level darker, byte 3 stays.
void rectZoomIn(const Stage& stage, const Progress& progress) {
    const std::int32_t halfRows = progress.linearRemainder(stage.height()) / 2;
    const std::int32_t halfColumns = progress.linearRemainder(stage.width()) / 2;
    const std::int32_t centreRow = (stage.height() + 1) / 2;
    const std::int32_t centreColumn = (stage.width() + 1) / 2;
    const auto darkened = [](Row& row, std::int32_t end) { row.mix(255, end, Division::by256); };
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        if (std::abs(row.y() - centreRow) < halfRows) {
            darkened(row, centreColumn - halfColumns + 1);
            row.from(centreColumn + halfColumns);
        }
        darkened(row, stage.width());
        row.fromRest();
    }
}

/// The incoming frame in a growing rectangle, which past the end grows beyond the frame; byte 3 stays.
void rectZoomOut(const Stage& stage, const Progress& progress) {
    const Progress grown = progress.onward();
    const std::int32_t halfRows = grown.linearSize(stage.height()) / 2;
    const std::int32_t halfColumns = grown.linearSize(stage.width()) / 2;
    const std::int32_t centreRow = stage.height() / 2;
    const std::int32_t centreColumn = stage.width() / 2;
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        if (std::abs(row.y() - centreRow) < halfRows)
            row.from(centreColumn - halfColumns + 1).to(centreColumn + halfColumns);
        row.fromRest();
    }
}

}  // namespace vantle
