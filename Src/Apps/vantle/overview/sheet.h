/// Many transitions on one picture, a row of thumbnails for each.
#pragma once

#include "overview/contact_sheet.h"
#include "overview/overview.h"

namespace vantle {

struct SheetOptions {
    OverviewOptions overview;
    SheetForm form;
};

/// Draws the sheet. Throws UsageError when the options make no sense and Error when something fails; the
/// output then stands as it stood before.
void drawSheet(const SheetOptions& options);

}  // namespace vantle
