#include "blends/dissolve.h"

#include <cstddef>

#include "frame/rounding.h"

namespace vantle {

/// Lets go of the old order before it asks for memory, so that the two need not exist together.
void Dissolve::renew(std::int32_t width, std::int32_t height, std::int32_t pitch) {
    delete[] mask;
    mask = nullptr;
    mask_y_pitch = pitch;
    mask_height = height;
    maskCount = width * height;
    curCountOfMask = 0;
    mask = new std::uint32_t[static_cast<std::size_t>(maskCount)];
}

/// Turns what was drawn, an index below m for m = 1, 2, ..., into ranks: the inverse of the permutation that
/// a Fisher-Yates shuffle from the end with these indices leaves of the pixels. Built in place by exchanging
/// in the opposite order, from the first pixel on.
void Dissolve::settle() {
    for (std::int32_t i = 0; i < maskCount; ++i) {
        std::uint32_t& exchanged = mask[mask[i]];
        mask[i] = exchanged;
        exchanged = static_cast<std::uint32_t>(i);
    }
}

void Dissolve::draw(const Stage& stage, const Progress& progress) {
    // All at the end: there the product may round to one less.
    curCountOfMask =
        progress.position() == progress.duration() ? maskCount : truncated(progress.linearPart(maskCount));
    for (Row row : stage.rows()) {
        const std::ptrdiff_t first = std::ptrdiff_t{stage.height() - 1 - row.y()} * stage.width();
        row.chosen(mask + first, static_cast<std::uint32_t>(curCountOfMask), stage.width());
        row.fromRest();
    }
}

}  // namespace vantle
