#include "frame/pixels/driver.h"

namespace vantle {

namespace {

/// Pixels of imgTo where `chosenAt(i)` has ones, and of imgFrom where it has zeros.
template <typename ChosenAt>
VANTLE_INLINE void chooseRun(const Run& run, ChosenAt chosenAt) {
    constexpr Pixel fourthByte = 0xFF000000;
    // Byte 3 of one of them is chosen beforehand.
    const Pixel open = run.fourth == run.from ? ~fourthByte : ~Pixel{0};
    const Pixel ofTo = run.fourth == run.to ? fourthByte : 0;
    const auto pixelAt = [=](const Run& tile, std::int32_t first, std::int32_t i) VANTLE_INLINED {
        const Pixel chosen = (chosenAt(first + i) & open) | ofTo;
        return (words(tile.to)[i] & chosen) | (words(tile.from)[i] & ~chosen);
    };
    if (run.fourth == nullptr || run.fourth == run.from || run.fourth == run.to)
        draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
            for (std::int32_t i = 0; i < tile.count; ++i) words(tile.out)[i] = pixelAt(tile, first, i);
        });
    else
        draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
            for (std::int32_t i = 0; i < tile.count; ++i)
                words(tile.out)[i] = withFourth(pixelAt(tile, first, i), words(tile.fourth)[i]);
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
