// Pixels from other places than their own.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "frame/load_each.h"
#include "frame/look_near.h"
#include "frame/loops.h"
#include "frame/multiversion.h"
#include "frame/pixels.h"
#include "frame/single_precision.h"

namespace vantle {

namespace {

/// Has samples of the row `ahead` bytes further, if any, brought into the cache.
VANTLE_INLINE void fetchSamples(const std::uint8_t* pixels, const std::int32_t* columns, std::int32_t count,
                                std::ptrdiff_t ahead) {
    if (ahead == 0) return;
    const std::uint8_t* const row = pixels + ahead;
    for (std::ptrdiff_t column = columns[0]; column <= columns[count - 1]; column += linePixels)
        fetchLine(row + 4 * column);
}

/// Whole pixels `columns[0]`, `columns[1]`, ... of a row. Columns only rise.
VANTLE_INLINE void gatherWords(std::uint32_t* out, const std::uint8_t* pixels, const std::int32_t* columns,
                               std::int32_t count) {
    const Word* const row = words(pixels);
    if (count < nearWords) {
        for (std::int32_t i = 0; i < count; ++i) out[i] = row[columns[i]];
        return;
    }
    const auto gatherEach = [=](std::int32_t at) VANTLE_INLINED {
        std::uint32_t loaded[nearWords];
        loadEach(loaded, [=](std::int32_t i) -> std::uint32_t { return row[columns[at + i]]; });
        std::memcpy(out + at, loaded, sizeof loaded);
    };
    const auto gatherFrom = [=](std::int32_t at, std::int32_t first) VANTLE_INLINED {
        if (columns[at + nearWords - 1] - first < wordsReach)
            lookNear(out + at, pixels, columns + at, first);
        else
            gatherEach(at);
    };
    // The last column from which on there are as many as are looked at.
    const std::int32_t last = columns[count - 1] - wordsReach + 1;
    const bool near = registersHoldHalfLines() && columns[0] <= last;
    std::int32_t at = 0;
    if (near)
        for (; at + nearWords <= count && columns[at] <= last; at += nearWords) gatherFrom(at, columns[at]);
    for (; at < count; at += nearWords) {
        at = std::min(at, count - nearWords);  // the last ones in part once more
        if (near && columns[at] > last)
            gatherFrom(at, last);
        else
            gatherEach(at);
    }
}

/// Calls `draw(first, count, pixels)` for a tile of samples after the other, each of which has been gathered.
template <typename Draw>
VANTLE_INLINE void drawSamples(const Samples& samples, std::int32_t count, Draw draw) {
    for (std::int32_t first = 0; first < count; first += tilePixels) {
        const std::int32_t pixels = std::min(tilePixels, count - first);
        const std::int32_t* const columns = samples.columns + first;
        fetchSamples(samples.pixels, columns, pixels, samples.ahead);
        alignas(lineBytes) std::uint32_t found[tilePixels];
        gatherWords(found, samples.pixels, columns, pixels);
        draw(first, pixels, found);
    }
}

VANTLE_INLINE void sampleWords(Run run, const Samples& samples) {
    drawSamples(samples, run.count,
                [=](std::int32_t first, std::int32_t count, const std::uint32_t* found) VANTLE_INLINED {
                    const Run tile = tail(run, first, count);
                    mergeFourth(tile.out, found, tile.kept, count);
                });
}

VANTLE_INLINE void pickWords(const Run& run, const std::uint32_t* from, const std::int32_t* places) {
    constexpr std::int32_t group = 8;  // for as many, places are kept in registers
    std::uint8_t* const out = run.out;
    const std::int32_t count = run.count;
    if (count < group) {
        for (std::int32_t i = 0; i < count; ++i) words(out)[i] = from[places[i]];
        return;
    }
    for (std::int32_t first = 0; first < count; first += group) {
        first = std::min(first, count - group);  // the last ones in part once more
        std::uint32_t some[group];
        loadEach(some, [=](std::int32_t i) { return from[places[first + i]]; });
        std::memcpy(out + std::ptrdiff_t{4} * first, some, sizeof some);
    }
}

}  // namespace

VANTLE_MULTIVERSION static void streamPicked(const Run& run, const std::uint32_t* pixels,
                                             const std::int32_t* places) {
    drawLines(run, [=](const Run& part, std::int32_t first)
                       VANTLE_INLINED { pickWords(part, pixels, places + first); });
}

VANTLE_MULTIVERSION void pick(const Run& run, const std::uint32_t* pixels, std::ptrdiff_t origin,
                              const std::int32_t* places) {
    // What is picked comes in blocks, which begin where lines do.
    if (streams(run, Fourth::mixed, PastCache::everything, linePixels))
        streamPicked(run, pixels + origin, places);
    else
        pickWords(run, pixels + origin, places);
}

VANTLE_MULTIVERSION void gather(std::uint32_t* out, const Samples& samples, std::int32_t count) {
    for (std::int32_t first = 0; samples.ahead != 0 && first < count; first += tilePixels)
        fetchSamples(samples.pixels, samples.columns + first, std::min(tilePixels, count - first),
                     samples.ahead);
    gatherWords(out, samples.pixels, samples.columns, count);
}

VANTLE_MULTIVERSION static void streamSampled(const Run& run, const Samples& samples) {
    drawLines(run, [=](const Run& part, std::int32_t first) VANTLE_INLINED {
        sampleWords(part, {samples.pixels, samples.columns + first, samples.ahead});
    });
}

VANTLE_MULTIVERSION void sample(const Run& run, const Samples& samples) {
    if (streams(run, Fourth::kept, PastCache::merges))
        streamSampled(run, samples);
    else
        sampleWords(run, samples);
}

VANTLE_MULTIVERSION void sampleFaded(const Run& run, const Samples& over, const std::uint32_t* under,
                                     float opacity) {
    const float rest = 1.0F - opacity;
    drawSamples(over, run.count,
                [=](std::int32_t first, std::int32_t count, const std::uint32_t* found) VANTLE_INLINED {
                    const Run tile = tail(run, first, count);
                    for (std::int32_t i = 0; i < count; ++i) {
                        const std::uint32_t faded = blendPixel(
                            found[i], under[first + i],
                            [=](float a, float b) { return lowered(a) * opacity + lowered(b) * rest; });
                        words(tile.out)[i] = withFourth(faded, words(tile.kept)[i]);
                    }
                });
}

}  // namespace vantle
