#include "frame/pixels/driver.h"
#include "frame/pixels/single_precision.h"

namespace vantle {

namespace {

template <typename ShareAt>
VANTLE_INLINE void fadeRun(const Run& run, ShareAt shareAt) {
    draw<WaitsFor::processor>(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
        drawPixels(tile, [=](std::int32_t i) VANTLE_INLINED {
            return blendPixel(words(tile.from)[i], words(tile.to)[i],
                              [share = shareAt(first + i)](float from, float to) {
                                  return (from - to) * share + lowered(to);
                              });
        });
    });
}

}  // namespace

VANTLE_MULTIVERSION void fade(const Run& run, float share) {
    fadeRun(run, [=](std::int32_t) { return share; });
}

VANTLE_MULTIVERSION void fade(const Run& run, const float* shares) {
    fadeRun(run, [=](std::int32_t i) { return shares[i]; });
}

}  // namespace vantle
