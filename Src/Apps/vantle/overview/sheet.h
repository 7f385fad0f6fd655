/// Many transitions on one picture, a row of thumbnails for each.
#pragma once

#include <optional>

#include "overview/overview.h"

namespace vantle {

struct SheetOptions {
    OverviewOptions overview;
    std::optional<Size> size;  ///< box for a thumbnail; 160 pixels wide when absent
    int columns = 5;           ///< thumbnails per transition
    std::optional<int>
        abreast;  ///< transitions side by side; few enough to keep the sheet's shape when absent
};

/// Draws the sheet. Throws UsageError when the options make no sense and Error when something fails; the
/// output then stands as it stood before.
void drawSheet(const SheetOptions& options);

}  // namespace vantle
