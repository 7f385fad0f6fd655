// Deposit: bands a tenth of the picture high fall from the top one after another and pile up at the bottom.
// They uncover the incoming frame where they are; nothing moves with them.
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

/// Byte 3 stays that of the outgoing frame.
void depositUp(const Stage& stage, const Progress& progress) {
    const std::int64_t height = stage.height();
    const std::int64_t band = evenTenth(stage.height());
    // The falls laid end to end: how far bands 0 to k fall together.
    const auto fallen = [=](std::int64_t k) { return (k + 1) * height - band * (k * (k + 1) / 2); };
    const std::int64_t last = height / band;
    const std::int64_t travel = progress.easedSize(static_cast<double>(fallen(last)));
    std::int64_t falling = 0;
    while (falling < last && fallen(falling) < travel) ++falling;
    const std::int64_t bottom = travel - (falling > 0 ? fallen(falling - 1) : 0);
    const std::int64_t pile = height - falling * band;
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        const bool inBand = row.y() >= bottom - band && row.y() < bottom;
        if (inBand || row.y() >= pile) row.to(stage.width());
        row.fromRest();
    }
}

}  // namespace vantle
