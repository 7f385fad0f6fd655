#include "frame/pixels/driver.h"

namespace vantle {

VANTLE_MULTIVERSION void shade(const Run& run, const std::uint8_t* pixels, const Shade& factor) {
    const std::uint16_t digits = factor.digits, a = factor.less[0], b = factor.less[1], c = factor.less[2];
    const std::uint8_t* const fourths = run.fourth != nullptr ? run.fourth : pixels;
    if (digits == 0) {
        draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
            for (std::int32_t i = 0; i < tile.count; ++i)
                words(tile.out)[i] = words(fourths)[first + i] & 0xFF000000U;
        });
        return;
    }
    const auto shaded = [=](std::uint16_t byte) {
        const int lower = (byte == a ? 1 : 0) + (byte == b ? 1 : 0) + (byte == c ? 1 : 0);
        return static_cast<std::uint16_t>((std::uint32_t{byte} * digits >> 16) -
                                          static_cast<std::uint32_t>(lower));
    };
    draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
        alignas(cacheLine) Lane products[2 * tilePixels];
        for (std::int32_t i = 0; i < 2 * tile.count; ++i) {
            const std::uint16_t lane = lanes(pixels)[2 * first + i];
            products[i] = static_cast<std::uint16_t>(shaded(lane & 255) | shaded(lane >> 8) << 8);
        }
        for (std::int32_t i = 0; i < tile.count; ++i)
            words(tile.out)[i] = withFourth(words(products)[i], words(fourths)[first + i]);
    });
}

}  // namespace vantle
