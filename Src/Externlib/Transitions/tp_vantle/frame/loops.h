/// What the loops over pixels are made of: how a run is seen, walked through line by line and stored, with
/// the next row being fetched meanwhile, and past the cache where its frame is large.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/multiversion.h"
#include "frame/pixels.h"
#include "frame/streaming.h"

namespace vantle {

// The loops take byte 0 of a pixel for the lowest of a word, and byte 3 for the highest.
static_assert(std::endian::native == std::endian::little);

// Pixels as the loops see them; rows may start at any byte.
using Word [[gnu::may_alias, gnu::aligned(1)]] = std::uint32_t;  // a pixel
using Half [[gnu::may_alias, gnu::aligned(1)]] = std::uint16_t;  // two of its bytes: a lane for products

constexpr std::int32_t tilePixels = 128;

// Not templates: the attributes that let these types look at any bytes do not survive as template arguments.
VANTLE_INLINE const Word* words(const void* pixels) { return static_cast<const Word*>(pixels); }
VANTLE_INLINE Word* words(void* pixels) { return static_cast<Word*>(pixels); }
VANTLE_INLINE const Half* halves(const void* pixels) { return static_cast<const Half*>(pixels); }
VANTLE_INLINE Half* halves(void* pixels) { return static_cast<Half*>(pixels); }

VANTLE_INLINE const std::uint8_t* pixelsOf(const Run& run, Source source) {
    return source == Source::to ? run.to : run.from;
}

/// The frame that a byte 3 comes from.
VANTLE_INLINE auto frameOf(Fourth fourth) {
    if (fourth == Fourth::kept) return &Run::kept;
    return fourth == Fourth::ofTo ? &Run::to : &Run::from;
}

VANTLE_INLINE const std::uint8_t* fourthOf(const Run& run, Fourth fourth) { return run.*frameOf(fourth); }

/// `count` pixels of a run from its pixel `first` on.
VANTLE_INLINE Run tail(const Run& run, std::int32_t first, std::int32_t count) {
    const std::ptrdiff_t offset = std::ptrdiff_t{4} * first;
    return {run.out + offset, run.from + offset, run.to + offset, run.kept + offset, count,
            run.pastCache,    run.ahead};
}

/// While a tile is computed, has what lies `ahead` of it brought into the cache, of frames such as
/// `&Run::from`. What takes no time but memory's gains nothing by it, nor do parts of tiles.
template <typename... Frame>
VANTLE_INLINE void fetchNext(const Run& tile, Frame... frame) {
    if (tile.ahead == 0) return;
    for (std::ptrdiff_t at = tile.ahead; at < tile.ahead + 4 * tile.count; at += lineBytes)
        (fetchLine(tile.*frame + at), ...);
}

/// Draws a run in two parts, so that what is fetched meanwhile is drawn `fetchedAhead` bytes later: in this
/// row, and by the second part in the next one. `draw(part, first)` draws one, from pixel `first` on.
template <typename Draw>
VANTLE_INLINE void drawFetched(const Run& run, Draw draw) {
    const std::int32_t before = run.ahead != 0 ? run.count - fetchedAhead / 4 : 0;
    const std::int32_t seam = before / linePixels * linePixels;
    for (std::int32_t first = 0, end = seam > 0 ? seam : run.count; first < run.count;
         first = end, end = run.count) {
        Run part = tail(run, first, end - first);
        if (end < run.count)
            part.ahead = fetchedAhead;
        else if (run.ahead != 0)
            part.ahead = run.ahead - std::ptrdiff_t{4} * first;
        draw(part, first);
    }
}

/// Bytes 0 to 2 of one pixel and byte 3 of another.
VANTLE_INLINE std::uint32_t withFourth(std::uint32_t colours, std::uint32_t fourth) {
    return (colours & 0x00FFFFFFU) | (fourth & 0xFF000000U);
}

/// The same of a run of pixels. `out` may be either.
VANTLE_INLINE void mergeFourth(std::uint8_t* out, const void* colours, const std::uint8_t* fourth,
                               std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) words(out)[i] = withFourth(words(colours)[i], words(fourth)[i]);
}

/// Draws a run tile by tile, in place: `loop(tile, first)` draws the pixels from `first` on. `frames` of the
/// next row are fetched. That whole tiles have a length that is known when they are compiled saves a quarter
/// of the time.
template <typename Loop, typename... Frame>
VANTLE_INLINE void drawTiles(Run run, Loop loop, Frame... frames) {
    const auto drawTile = [&](std::int32_t first, std::int32_t count) VANTLE_INLINED {
        const Run tile = tail(run, first, count);
        fetchNext(tile, frames...);
        loop(tile, first);
    };
    std::int32_t first = 0;
    for (; run.count - first >= tilePixels; first += tilePixels) drawTile(first, tilePixels);
    // What looks for errors does not see that the rest is shorter.
    if (first < run.count) drawTile(first, std::min(run.count - first, tilePixels));
}

/// Draws a run line by line: `draw(line, first, count)` makes `count` of its pixels from `first` on. `frames`
/// of the next row are fetched. The last line overlaps the one before, and is worked out before that one is
/// stored: a host may have a frame drawn over one of its inputs.
template <typename Draw, typename... Frame>
VANTLE_INLINE void drawLinewise(Run run, Draw draw, Frame... frames) {
    std::uint8_t* const out = run.out;
    if (run.count < linePixels) {
        constexpr std::int32_t few = 4;
        std::uint32_t pixels[few];
        std::int32_t first = 0;
        for (; first + few <= run.count; first += few) {
            draw(pixels, first, few);
            std::memcpy(out + std::ptrdiff_t{4} * first, pixels, sizeof pixels);
        }
        for (; first < run.count; ++first) {
            draw(pixels, first, 1);
            words(out)[first] = pixels[0];
        }
        return;
    }
    const auto store = [=](std::int32_t first, const std::uint32_t(&line)[linePixels]) VANTLE_INLINED {
        std::memcpy(out + std::ptrdiff_t{4} * first, line, sizeof line);
    };
    alignas(lineBytes) std::uint32_t line[linePixels];
    const std::int32_t rest = run.count % linePixels;
    const std::int32_t last = run.count - linePixels;
    const std::int32_t end = rest == 0 ? run.count : last - rest;
    for (std::int32_t first = 0; first < end; first += tilePixels) {
        fetchNext(tail(run, first, std::min(tilePixels, run.count - first)), frames...);
        const std::int32_t tileEnd = std::min(first + tilePixels, end);
        // Processors that foresee what an instruction will load see further ahead by four of them.
#pragma GCC unroll 4
        for (std::int32_t at = first; at < tileEnd; at += linePixels) {
            draw(line, at, linePixels);
            store(at, line);
        }
    }
    if (rest == 0) return;
    alignas(lineBytes) std::uint32_t lastLine[linePixels];
    draw(line, end, linePixels);
    draw(lastLine, last, linePixels);
    store(end, line);
    store(last, lastLine);
}

/// Draws a run in parts of a length that is known when they are compiled, but for its end: `drawPart(part,
/// first)` draws one, whose first pixel is pixel `first` of the run. They are lines where these stay in a
/// register from the pictures to the output, and else tiles.
template <typename DrawPart, typename... Frame>
VANTLE_INLINE void drawParts(Run run, DrawPart drawPart, Frame... frames) {
    if (!registersHoldLines()) {
        drawTiles(run, drawPart, frames...);
        return;
    }
    drawLinewise(
        run,
        [=](std::uint32_t* line, std::int32_t first, std::int32_t count) VANTLE_INLINED {
            Run part = tail(run, first, count);
            part.out = reinterpret_cast<std::uint8_t*>(line);
            drawPart(part, first);
        },
        frames...);
}

/// Whether a run with this byte 3, of at least `shortest` pixels, is drawn past the cache: where `least` is.
VANTLE_INLINE bool streams(const Run& run, Fourth fourth, PastCache least,
                           std::int32_t shortest = shortestRun) {
    // What is drawn from what it is drawn over is at hand.
    if (fourth == Fourth::kept && run.kept == run.out) return false;
    return canStream && run.pastCache >= least && run.count >= shortest && bytesToLine(run.out) % 4 == 0;
}

/// Draws a run of some lines past the cache: a tile of whole lines is drawn and then stored. Of the lines at
/// the run's ends only the part is stored that is its own. `loop(part, first)` draws pixels from `first` on.
template <typename Loop, typename... Frame>
VANTLE_INLINE void drawLines(Run run, Loop loop, Frame... frames) {
    alignas(lineBytes) std::uint8_t lines[4 * tilePixels];
    const auto drawPart = [&](std::int32_t first, std::int32_t count) VANTLE_INLINED {
        Run part = tail(run, first, count);
        part.out = lines;
        if (count > linePixels) fetchNext(part, frames...);
        loop(part, first);
    };
    std::int32_t at = bytesToLine(run.out) / 4;
    if (at > 0) {
        drawPart(0, linePixels);
        std::copy_n(lines, 4 * at, run.out);
    }
    while (run.count - at >= linePixels) {
        const std::int32_t count = std::min(tilePixels, (run.count - at) / linePixels * linePixels);
        drawPart(at, count);
        streamLines(run.out + std::ptrdiff_t{4} * at, lines, 4 * count);
        at += count;
    }
    if (at < run.count) {
        const std::int32_t last = run.count - linePixels;
        drawPart(last, linePixels);
        std::copy_n(lines + std::ptrdiff_t{4} * (at - last), 4 * (run.count - at),
                    run.out + std::ptrdiff_t{4} * at);
    }
}

}  // namespace vantle
