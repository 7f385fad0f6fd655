/// Pictures of 256 colours.
#pragma once

#include <utility>

#include "media/canvas.h"
#include "media/convert.h"
#include "media/filters.h"

namespace vantle {

/// Finds the colours that suit many pictures best.
class PaletteMaker {
   public:
    explicit PaletteMaker(Size size);

    /// Counts the colours of a picture.
    void add(av::Frame picture) { filters_.push(std::move(picture)); }

    /// The palette of all that were added, which ends it.
    av::Frame palette();

   private:
    Filters filters_;
};

/// Reduces pictures to the colours of one palette, so that what stays alike from one to the next does so to
/// the bit, and need not be stored again.
class Palettized {
   public:
    /// The format of the pictures that are reduced.
    static constexpr PictureFormat format{AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};

    Palettized(Size size, av::Frame palette);

    /// A picture of 256 colours, with the same time; null for null.
    av::Frame reduced(av::Frame picture);

   private:
    Filters filters_;
};

}  // namespace vantle
