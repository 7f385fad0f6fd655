// Dissolve: the pixels of the incoming frame come one by one in a random order, which stays the same while
// the geometry does. The only transition with a state: its calls must not overlap.
#include <cstdlib>
#include <ctime>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

using namespace vantle;

namespace {

/// Fills `ranks` with the place of each of `count` pixels in a random order: the inverse of the permutation
/// that a Fisher-Yates shuffle from the end leaves of the pixels in memory order, drawing rand() % m for
/// m = count down to 1. Built in place by exchanging in the opposite order, from the first pixel on.
void shuffle(std::uint32_t* ranks, std::int32_t count) {
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    for (std::int32_t m = count; m >= 1; --m) ranks[m - 1] = static_cast<std::uint32_t>(std::rand() % m);
    for (std::int32_t i = 0; i < count; ++i) {
        std::uint32_t& exchanged = ranks[ranks[i]];
        ranks[i] = exchanged;
        exchanged = static_cast<std::uint32_t>(i);
    }
}

}  // namespace

/// Whole pixels. Throws std::bad_alloc when the order finds no memory; the next call tries again.
VANTLE_API void TrFadeNew(DIImage imgOut, DIImage imgFrom, DIImage imgTo, const TransParam* param) {
    static std::uint32_t* mask;  // ranks of the pixels, by memory order; kept until the library is unloaded
    static std::int32_t maskCount;
    static std::int32_t curCountOfMask;  // pixels of imgTo shown by the latest call
    static std::int32_t mask_y_pitch;
    static std::int32_t mask_height;

    const Stage stage(imgOut, imgFrom, imgTo);
    if (!stage.drawable()) return;
    const std::int32_t count = stage.width() * stage.height();
    if (mask == nullptr || mask_y_pitch != stage.pitch() || mask_height != stage.height() ||
        maskCount != count) {
        delete[] mask;
        mask = nullptr;
        mask_y_pitch = stage.pitch();
        mask_height = stage.height();
        maskCount = count;
        curCountOfMask = 0;
        mask = new std::uint32_t[static_cast<std::size_t>(count)];
        shuffle(mask, count);
    }
    curCountOfMask = truncated(Progress(param).linearPart(count));
    const std::uint32_t* ranks = mask;
    for (Row row : stage.rows()) {
        row.chosen(ranks, static_cast<std::uint32_t>(curCountOfMask), stage.width());
        row.fromRest();
        ranks += stage.width();
    }
}
