#include "blends/dissolve.h"

#include <algorithm>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

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
/// in the opposite order, from the first pixel on; pixels are counted by rows from the bottom one.
void Dissolve::settle() {
    for (std::int32_t i = 0; i < maskCount; ++i) {
        std::uint32_t& exchanged = mask[mask[i]];
        mask[i] = exchanged;
        exchanged = static_cast<std::uint32_t>(i);
    }
    if (mask_y_pitch >= 0 || maskCount == 0) return;
    // Turned for memory that begins with the top row, so that the picture is the same and read forwards.
    const std::int32_t width = maskCount / mask_height;
    for (std::int32_t above = 0, below = maskCount - width; above < below; above += width, below -= width)
        std::swap_ranges(mask + above, mask + above + width, mask + below);
}

void Dissolve::draw(const Stage& stage, const Progress& progress) {
    // All at the end: there the product may round to one less.
    curCountOfMask =
        progress.position() == progress.duration() ? maskCount : truncated(progress.linearPart(maskCount));
    const auto shown = static_cast<std::uint32_t>(curCountOfMask);
    for (Row row : stage.rows(Writes::pixels)) {
        // Counted like the ranks: by rows as memory holds them.
        const std::int32_t before = mask_y_pitch < 0 ? row.y() : stage.height() - 1 - row.y();
        row.choose(Columns<std::uint32_t>{mask + std::ptrdiff_t{before} * stage.width(), 0}, shown,
                   stage.width());
        row.fromRest();
    }
}

}  // namespace vantle
