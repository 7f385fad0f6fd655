/// What the loops over pixels are made of: how pixels are seen, and the one way in which a run is drawn and
/// stored.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/pixels/processor.h"
#include "frame/pixels/run.h"
#include "frame/pixels/streaming.h"

namespace vantle {

// The loops take byte 0 of a pixel for the lowest of a word, and byte 3 for the highest.
static_assert(std::endian::native == std::endian::little);

// Pixels as the loops see them; rows may start at any byte.
using Word [[gnu::may_alias, gnu::aligned(1)]] = std::uint32_t;  // a pixel
using Lane [[gnu::may_alias, gnu::aligned(1)]] = std::uint16_t;  // two of its bytes, for products

// Not templates: the attributes that let these types look at any bytes do not survive as template arguments.
VANTLE_INLINE const Word* words(const void* pixels) { return static_cast<const Word*>(pixels); }
VANTLE_INLINE Word* words(void* pixels) { return static_cast<Word*>(pixels); }
VANTLE_INLINE const Lane* lanes(const void* pixels) { return static_cast<const Lane*>(pixels); }
VANTLE_INLINE Lane* lanes(void* pixels) { return static_cast<Lane*>(pixels); }

/// Bytes 0 to 2 of one pixel and byte 3 of another.
VANTLE_INLINE Pixel withFourth(Pixel colours, Pixel fourth) {
    return (colours & 0x00FFFFFFU) | (fourth & 0xFF000000U);
}

/// `count` pixels of a run from its pixel `first` on.
VANTLE_INLINE Run part(const Run& run, std::int32_t first, std::int32_t count) {
    const std::ptrdiff_t offset = std::ptrdiff_t{4} * first;
    const std::uint8_t* const fourth = run.fourth != nullptr ? run.fourth + offset : nullptr;
    return {run.out + offset, run.from + offset, run.to + offset, fourth, count, run.streamed, run.ahead};
}

/// Pixels that are drawn at a time.
constexpr std::int32_t tilePixels = 128;

/// What a run waits for, if both frames are read: where it is the processor, the next row is prefetched
/// meanwhile.
enum class WaitsFor : std::uint8_t { memory, processor };

/// Draws a run tile by tile: `tile(part, first)` draws a part of it, whose first pixel is pixel `first` of
/// the run. A part may lie over what it is made from, but for what it reads from other places.
template <WaitsFor what = WaitsFor::memory, std::int32_t shortest = shortestStreamed, typename Tile>
VANTLE_INLINE void draw(Run run, Tile drawTile) {
    const auto tile = [&](const Run& part, std::int32_t start) VANTLE_INLINED {
        if (what == WaitsFor::processor && run.ahead != 0)
            for (std::ptrdiff_t at = run.ahead; at < run.ahead + 4 * part.count; at += cacheLine) {
                prefetch(part.from + at);
                prefetch(part.to + at);
            }
        drawTile(part, start);
    };
    std::int32_t first = 0;
    if (isStreamed(run, shortest)) {
        first = bytesToCacheLine(run.out) / 4;
        if (first > 0) tile(part(run, 0, first), 0);
        alignas(cacheLine) std::uint8_t drawn[4 * tilePixels];
        while (run.count - first >= linePixels) {
            Run lines = part(run, first, std::min(tilePixels, (run.count - first) / linePixels * linePixels));
            lines.out = drawn;
            tile(lines, first);
            streamLines(run.out + std::ptrdiff_t{4} * first, drawn, 4 * lines.count);
            first += lines.count;
        }
    }
    // Most tiles are of a length that is known when they are compiled.
    for (; run.count - first >= tilePixels; first += tilePixels) tile(part(run, first, tilePixels), first);
    // std::min tells the static analyser that no tile is exceeded.
    if (first < run.count) tile(part(run, first, std::min(run.count - first, tilePixels)), first);
}

/// Draws the pixels of a tile, `pixelAt(i)`, a cache line at a time: what is stored is none of what they are
/// made from before they are made, so that the loop needs no proof of it.
template <typename PixelAt>
VANTLE_INLINE void drawPixels(const Run& tile, PixelAt pixelAt) {
    std::int32_t i = 0;
    for (; i + linePixels <= tile.count; i += linePixels) {
        alignas(cacheLine) Pixel line[linePixels];
        for (std::int32_t j = 0; j < linePixels; ++j) line[j] = pixelAt(i + j);
        std::memcpy(tile.out + std::ptrdiff_t{4} * i, line, sizeof line);
    }
    for (; i < tile.count; ++i) words(tile.out)[i] = pixelAt(i);
}

}  // namespace vantle
