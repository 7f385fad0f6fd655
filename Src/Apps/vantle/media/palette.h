/// Pictures of 256 colours.
#pragma once

#include "media/canvas.h"
#include "media/convert.h"
#include "media/filters.h"

namespace vantle {

/// Reduces pictures to 256 colours each, with a palette of its own.
class Palettes {
   public:
    /// The format of the pictures that are reduced.
    static constexpr PictureFormat format{AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};

    explicit Palettes(Size size);

    /// A picture of 256 colours, with the same time; null for null.
    av::Frame reduced(av::Frame picture);

   private:
    Filters filters_;
};

}  // namespace vantle
