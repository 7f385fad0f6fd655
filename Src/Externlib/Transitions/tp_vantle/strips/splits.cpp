// Splits and merges: a band of one frame opens out from the centre line, or closes in toward it. The twins
// differ in their centre, in their bytes and in how the band's size is rounded.
#include <cstdlib>

#include "frame/progress.h"
#include "frame/stage.h"

namespace vantle {

/// Rows of the incoming frame around the centre row, 2k + 1 of them; byte 3 stays.
void rowSplit(const Stage& stage, const Progress& progress) {
    const std::int32_t half = progress.easedSize(stage.height()) / 2;
    const std::int32_t centre = stage.height() / 2;
    for (Row row : stage.rows(Writes::coloursOverFrom))
        row.showRest(half != 0 && std::abs(row.y() - centre) <= half ? Source::to : Source::from);
}

/// Columns of the incoming frame around the centre column, 2k + 1 of them; all bytes.
void colSplit(const Stage& stage, const Progress& progress) {
    const std::int32_t half = progress.easedSize(stage.width()) / 2;
    const std::int32_t centre = stage.width() / 2;
    for (Row row : stage.rows(Writes::pixels)) {
        if (half != 0) row.from(centre - half).to(centre + half + 1);
        row.fromRest();
    }
}

/// Rows of the outgoing frame around the centre, 2h of them; padding and all.
void rowMerge(const Stage& stage, const Progress& progress) {
    const std::int32_t half = progress.easedRemainder(stage.height()) / 2;
    const std::int32_t centre = stage.height() / 2;
    for (Row row : stage.rows(Writes::pixels)) {
        const bool kept = row.y() >= centre - half && row.y() < centre + half;
        row.showRest(kept ? Source::from : Source::to);
    }
}

/// Columns of the outgoing frame around the centre column, 2h - 1 of them; all bytes.
void colMerge(const Stage& stage, const Progress& progress) {
    const std::int32_t half = progress.easedRemainder(stage.width()) / 2;
    const std::int32_t centre = stage.width() / 2;
    for (Row row : stage.rows(Writes::pixels))
        row.to(centre - half + 1).from(centre + half).to(stage.width()).fromRest();
}

/// A cross of the incoming frame: a bar of 2k columns, and one of 2k - 1 rows with their padding about the
/// upper of two middle rows.
void crossSplit(const Stage& stage, const Progress& progress) {
    const std::int32_t halfRows = progress.easedSize(stage.height()) / 2;
    const std::int32_t halfColumns = progress.easedSize(stage.width()) / 2;
    const std::int32_t centreRow = stage.height() - 1 - stage.height() / 2;
    const std::int32_t centreColumn = stage.width() / 2;
    for (Row row : stage.rows(Writes::pixels)) {
        if (std::abs(row.y() - centreRow) < halfRows)
            row.toRest();
        else
            row.from(centreColumn - halfColumns).to(centreColumn + halfColumns).fromRest();
    }
}

/// A cross of the outgoing frame, shrinking linearly: bars of 2h - 1 about a centre rounded up; byte 3 stays.
void crossMerge(const Stage& stage, const Progress& progress) {
    const std::int32_t halfRows = progress.linearRemainder(stage.height()) / 2;
    const std::int32_t halfColumns = progress.linearRemainder(stage.width()) / 2;
    const std::int32_t centreRow = (stage.height() + 1) / 2;
    const std::int32_t centreColumn = (stage.width() + 1) / 2;
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        if (std::abs(row.y() - centreRow) >= halfRows)
            row.to(centreColumn - halfColumns + 1).from(centreColumn + halfColumns).to(stage.width());
        row.fromRest();
    }
}

}  // namespace vantle
