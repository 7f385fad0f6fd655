// Pixels from other places than their own.
#include <algorithm>
#include <cstring>

#include "frame/pixels/driver.h"
#include "frame/pixels/lookup.h"
#include "frame/pixels/single_precision.h"

namespace vantle {

namespace {

/// Loads eight from anywhere, one by one: a loop of unknown length becomes the processor's own gather, which
/// is slower.
VANTLE_INLINE void loadEach(Pixel* out, const Word* pixels, const std::int32_t* places) {
    Pixel loaded[nearWords];
    for (std::int32_t i = 0; i < nearWords; ++i) loaded[i] = pixels[places[i]];
    std::memcpy(out, loaded, sizeof loaded);
}

VANTLE_INLINE void gatherWords(Pixel* out, const std::uint8_t* pixels, const std::int32_t* columns,
                               std::int32_t count) {
    const Word* const row = words(pixels);
    std::int32_t at = 0;
    if (hasAvx2() && count >= nearWords) {
        // The last column from which on there are as many as are looked up.
        const std::int32_t last = columns[count - 1] - wordsReach + 1;
        while (columns[0] <= last && at < count) {
            at = std::min(at, count - nearWords);  // the last ones in part once more
            const std::int32_t first = std::min(columns[at], last);
            if (columns[at + nearWords - 1] - first < wordsReach)
                lookUp(out + at, pixels, columns + at, first);
            else
                loadEach(out + at, row, columns + at);
            at += nearWords;
        }
    }
    for (; at + nearWords <= count; at += nearWords) loadEach(out + at, row, columns + at);
    for (; at < count; ++at) out[at] = row[columns[at]];
}

/// The samples of a tile, for which there is room to be gathered.
VANTLE_INLINE const Pixel* samplesOf(const Samples& samples, std::int32_t first, std::int32_t count,
                                     Pixel* room) {
    if (samples.gathered != nullptr) return samples.gathered + first;
    gatherWords(room, samples.row, samples.columns + first, count);
    return room;
}

}  // namespace

VANTLE_MULTIVERSION void gather(Pixel* out, const std::uint8_t* row, const std::int32_t* columns,
                                std::int32_t count) {
    gatherWords(out, row, columns, count);
}

VANTLE_MULTIVERSION void sample(const Run& run, const Samples& samples) {
    draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
        alignas(cacheLine) Pixel room[tilePixels];
        const Pixel* const pixels = samplesOf(samples, first, tile.count, room);
        for (std::int32_t i = 0; i < tile.count; ++i)
            words(tile.out)[i] = withFourth(pixels[i], words(tile.fourth)[i]);
    });
}

VANTLE_MULTIVERSION void sample(const Run& run, const Samples& over, const Samples& under, float opacity) {
    const float rest = 1.0F - opacity;
    draw(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
        alignas(cacheLine) Pixel overRoom[tilePixels], underRoom[tilePixels];
        const Pixel* const a = samplesOf(over, first, tile.count, overRoom);
        const Pixel* const b = samplesOf(under, first, tile.count, underRoom);
        for (std::int32_t i = 0; i < tile.count; ++i) {
            const Pixel faded = blendPixel(a[i], b[i], [=](float shown, float behind) {
                return lowered(shown) * opacity + lowered(behind) * rest;
            });
            words(tile.out)[i] = withFourth(faded, words(tile.fourth)[i]);
        }
    });
}

VANTLE_MULTIVERSION void gather(const Run& run, const Pixel* pixels, std::ptrdiff_t origin,
                                const std::int32_t* places) {
    const Word* const start = words(pixels) + origin;
    // The runs beside it come from the same place and are whole cache lines as well: no length is too short.
    draw<WaitsFor::memory, linePixels>(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
        std::int32_t i = 0;
        for (; i + nearWords <= tile.count; i += nearWords) {
            Pixel loaded[nearWords];
            loadEach(loaded, start, places + first + i);
            std::memcpy(tile.out + std::ptrdiff_t{4} * i, loaded, sizeof loaded);
        }
        for (; i < tile.count; ++i) words(tile.out)[i] = start[places[first + i]];
    });
}

}  // namespace vantle
