/// A page to look at many transitions in a browser.
#pragma once

#include <optional>

#include "overview/overview.h"

namespace vantle {

struct GalleryOptions {
    OverviewOptions overview;
    std::optional<Size> size;  ///< of the frames; FROM's shape within 480 x 480 when absent
    int positions = 30;        ///< frames per transition, from the overlap's start to its end
};

/// Makes the folder. Throws UsageError when the options make no sense and Error when something fails; what
/// stood there then stands as before.
void makeGallery(const GalleryOptions& options);

}  // namespace vantle
