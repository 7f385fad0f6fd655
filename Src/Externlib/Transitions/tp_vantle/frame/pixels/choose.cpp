#include "frame/pixels/driver.h"

namespace vantle {

namespace {

/// Pixels of imgTo where `bytesAt(i)` has ones, and of imgFrom where it has zeros.
template <typename BytesAt>
VANTLE_INLINE void chooseRun(const Run& run, BytesAt bytesAt) {
    const auto chosenAt = [=](const Run& tile, std::int32_t first, std::int32_t i) VANTLE_INLINED {
        const std::uint32_t bytes = bytesAt(first + i);
        return (words(tile.to)[i] & bytes) | (words(tile.from)[i] & ~bytes);
    };
    if (run.fourth == nullptr)
        draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
            for (std::int32_t i = 0; i < tile.count; ++i) words(tile.out)[i] = chosenAt(tile, first, i);
        });
    else
        draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
            for (std::int32_t i = 0; i < tile.count; ++i)
                words(tile.out)[i] = withFourth(chosenAt(tile, first, i), words(tile.fourth)[i]);
        });
}

}  // namespace

VANTLE_MULTIVERSION void choose(const Run& run, const Weight* mask) {
    chooseRun(run,
              [=](std::int32_t i) { return static_cast<std::uint32_t>(static_cast<std::int8_t>(mask[i])); });
}

VANTLE_MULTIVERSION void choose(const Run& run, const std::uint32_t* ranks, std::uint32_t end) {
    // No branch: the order of the ranks has no pattern to predict.
    chooseRun(run, [=](std::int32_t i) -> std::uint32_t { return ranks[i] < end ? 0xFFFFFFFF : 0; });
}

}  // namespace vantle
