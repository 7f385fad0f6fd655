// Rectangle zooms: one frame inside a centred rectangle whose size is linear. The twins differ in their
// centre and in how the incoming pixels are written.
#include <cstdlib>

#include "frame/progress.h"
#include "frame/stage.h"

using namespace vantle;

/// The outgoing frame in a shrinking rectangle; around it the incoming one, a level darker, byte 3 stays.
VANTLE_API void TrRectZoomIn(DIImage imgOut, DIImage imgFrom, DIImage imgTo, const TransParam* param) {
    const Stage stage(imgOut, imgFrom, imgTo);
    if (!stage.drawable()) return;
    const Progress progress(param);
    const std::int32_t halfRows = progress.linearRemainder(stage.height()) / 2;
    const std::int32_t halfColumns = progress.linearRemainder(stage.width()) / 2;
    const std::int32_t centreRow = (stage.height() + 1) / 2;
    const std::int32_t centreColumn = (stage.width() + 1) / 2;
    const auto darkened = [](Row& row, std::int32_t end) {
        row.mix(Divisor::by256, Fourth::ofFrom, 255, end);
    };
    for (Row row : stage.rows()) {
        if (std::abs(row.y() - centreRow) < halfRows) {
            darkened(row, centreColumn - halfColumns + 1);
            row.from(centreColumn + halfColumns);
        }
        darkened(row, stage.width());
        row.fromRest();
    }
}

/// The incoming frame in a growing rectangle, which past the end grows beyond the frame; byte 3 stays.
VANTLE_API void TrRectZoomOut(DIImage imgOut, DIImage imgFrom, DIImage imgTo, const TransParam* param) {
    const Stage stage(imgOut, imgFrom, imgTo);
    if (!stage.drawable()) return;
    const Progress progress(param, Progress::Range::onward);
    const std::int32_t halfRows = progress.linearSize(stage.height()) / 2;
    const std::int32_t halfColumns = progress.linearSize(stage.width()) / 2;
    const std::int32_t centreRow = stage.height() / 2;
    const std::int32_t centreColumn = stage.width() / 2;
    for (Row row : stage.rows()) {
        if (std::abs(row.y() - centreRow) < halfRows)
            row.from(centreColumn - halfColumns + 1).toColours(centreColumn + halfColumns);
        row.fromRest();
    }
}
