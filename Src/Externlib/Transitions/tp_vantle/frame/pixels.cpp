#include "frame/pixels.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

#include "frame/load_each.h"
#include "frame/multiversion.h"
#include "frame/single_precision.h"
#include "frame/streaming.h"

namespace vantle {

namespace {

// The loops take byte 0 of a pixel for the lowest of a word, and byte 3 for the highest.
static_assert(std::endian::native == std::endian::little);

// Pixels as the loops see them; rows may start at any byte.
using Word [[gnu::may_alias, gnu::aligned(1)]] = std::uint32_t;  // a pixel
using Half [[gnu::may_alias, gnu::aligned(1)]] = std::uint16_t;  // two of its bytes: a lane for products

constexpr std::int32_t tilePixels = 128;

// Not templates: the attributes that let these types look at any bytes do not survive as template arguments.
const Word* words(const void* pixels) { return static_cast<const Word*>(pixels); }
Word* words(void* pixels) { return static_cast<Word*>(pixels); }
const Half* halves(const void* pixels) { return static_cast<const Half*>(pixels); }
Half* halves(void* pixels) { return static_cast<Half*>(pixels); }

const std::uint8_t* pixelsOf(const Run& run, Source source) {
    return source == Source::to ? run.to : run.from;
}

/// The frame that a byte 3 comes from.
auto frameOf(Fourth fourth) {
    if (fourth == Fourth::kept) return &Run::kept;
    return fourth == Fourth::ofTo ? &Run::to : &Run::from;
}

const std::uint8_t* fourthOf(const Run& run, Fourth fourth) { return run.*frameOf(fourth); }

Run tail(const Run& run, std::int32_t first, std::int32_t count) {
    const std::ptrdiff_t offset = std::ptrdiff_t{4} * first;
    return {run.out + offset, run.from + offset, run.to + offset, run.kept + offset, count,
            run.ahead,        run.frameBytes};
}

/// While a tile is computed, has the same one of the next row brought into the cache, of frames such as
/// `&Run::from`. What takes no time but memory's gains nothing by it, nor do parts of tiles.
template <typename... Frame>
VANTLE_INLINE void fetchNext(const Run& tile, Frame... frame) {
    if (tile.ahead == 0) return;
    for (std::ptrdiff_t at = tile.ahead; at < tile.ahead + 4 * tile.count; at += lineBytes)
        (fetchLine(tile.*frame + at), ...);
}

/// Bytes 0 to 2 of one pixel and byte 3 of another. `out` may be either.
VANTLE_INLINE void mergeFourth(std::uint8_t* out, const void* colours, const std::uint8_t* fourth,
                               std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i)
        words(out)[i] = (words(colours)[i] & 0x00FFFFFFU) | (words(fourth)[i] & 0xFF000000U);
}

VANTLE_INLINE std::uint16_t upperHalf(std::uint16_t a, std::uint16_t b) {
    return static_cast<std::uint16_t>(std::uint32_t{a} * b >> 16);
}

/// One lane mixed: `weights` is the weight of imgTo, twice.
template <Divisor divisor>
VANTLE_INLINE std::uint16_t mixHalf(std::uint16_t from, std::uint16_t to, std::uint16_t weights) {
    std::uint16_t low = 0, high = 0;
    if constexpr (divisor == Divisor::by256) {
        const std::uint16_t toWeight = weights & 255;
        const std::uint16_t fromWeight = 255 - toWeight;
        low = (static_cast<std::uint16_t>((from & 255) * fromWeight) >> 8) +
              (static_cast<std::uint16_t>((to & 255) * toWeight) >> 8);
        high = (static_cast<std::uint16_t>((from >> 8) * fromWeight) >> 8) +
               (static_cast<std::uint16_t>((to >> 8) * toWeight) >> 8);
    } else {
        // For bytes v and w, v * w / 255 is v * (257 w + 1) / 65536, also when truncated. With w the weight
        // of imgTo, the factors are `weights` + 1 and 65536 - `weights`: modulo 65536, which but for the
        // weights 0 and 255 is what they are.
        const auto toFactor = static_cast<std::uint16_t>(weights + 1);
        const auto fromFactor = static_cast<std::uint16_t>(-weights);
        low = upperHalf(from & 255, fromFactor) + upperHalf(to & 255, toFactor);
        high = upperHalf(from >> 8, fromFactor) + upperHalf(to >> 8, toFactor);
    }
    return static_cast<std::uint16_t>(low | high << 8);
}

/// `weightsAt(i)`: the weight of lane i, twice. `each`: whether they differ, and some may be 0 or 255.
template <Divisor divisor, bool each, typename WeightsAt>
VANTLE_INLINE void mixHalves(Half* out, const Half* from, const Half* to, WeightsAt weightsAt,
                             std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) {
        const std::uint16_t weights = weightsAt(i);
        const std::uint16_t f = from[i];
        const std::uint16_t t = to[i];
        std::uint16_t mixed = mixHalf<divisor>(f, t, weights);
        // Their factors being 0 and 1, nothing has been mixed of these yet.
        if constexpr (divisor == Divisor::by255 && each) {
            const auto allFrom = static_cast<std::uint16_t>(-static_cast<int>(weights == 0));
            const auto allTo = static_cast<std::uint16_t>(-static_cast<int>(weights == 0xFFFF));
            mixed = static_cast<std::uint16_t>(mixed | (f & allFrom) | (t & allTo));
        }
        out[i] = mixed;
    }
}

/// Draws a run in place, tile by tile where `frames` of the next row are fetched. `loop(part, first)` draws
/// part of it, `first` being the pixel of the run that the part begins with.
template <typename Loop, typename... Frame>
VANTLE_INLINE void drawTiles(Run run, Loop loop, Frame... frames) {
    const std::int32_t step = run.ahead == 0 ? run.count : tilePixels;
    for (std::int32_t first = 0; first < run.count; first += step) {
        const Run tile = tail(run, first, std::min(step, run.count - first));
        fetchNext(tile, frames...);
        loop(tile, first);
    }
}

/// Mixes tile by tile, so that weights are spread, and a fourth byte of another kind is put in, while the
/// tile is in the cache. `lanes(spread, first, count)`: the weights of a tile's lanes, for which there is
/// room in `spread`.
template <Divisor divisor, bool each, typename Lanes>
VANTLE_INLINE void mixTiles(const Run& run, Fourth fourth, Lanes lanes) {
    for (std::int32_t first = 0; first < run.count; first += tilePixels) {
        const Run tile = tail(run, first, std::min(tilePixels, run.count - first));
        // By 256 it takes no time but memory's.
        if (each && divisor == Divisor::by255 && run.count >= tilePixels) {
            fetchNext(tile, &Run::from, &Run::to);
            if (fourth == Fourth::kept) fetchNext(tile, &Run::kept);
        }
        alignas(lineBytes) Half spread[2 * tilePixels];
        const auto weightsAt = lanes(spread, first, tile.count);
        if (fourth == Fourth::mixed) {
            mixHalves<divisor, each>(halves(tile.out), halves(tile.from), halves(tile.to), weightsAt,
                                     2 * tile.count);
        } else {
            alignas(lineBytes) Half mixed[2 * tilePixels];
            mixHalves<divisor, each>(mixed, halves(tile.from), halves(tile.to), weightsAt, 2 * tile.count);
            mergeFourth(tile.out, mixed, fourthOf(tile, fourth), tile.count);
        }
    }
}

/// imgTo at full weight of 256ths: v * 255 / 256, which is v - 1 for all v but 0.
VANTLE_INLINE void dim(Run run, Fourth fourth) {
    if (fourth == Fourth::mixed) {
        for (std::int32_t i = 0; i < 4 * run.count; ++i)
            run.out[i] = static_cast<std::uint8_t>(run.to[i] - (run.to[i] != 0 ? 1 : 0));
        return;
    }
    const std::uint8_t* const other = fourthOf(run, fourth);
    for (std::int32_t i = 0; i < run.count; ++i) {
        const std::uint32_t pixel = words(run.to)[i];
        // The top bit of each byte, whether it is more than 0.
        const std::uint32_t some = pixel | ((pixel & 0x7F7F7F7FU) + 0x7F7F7F7FU);
        const std::uint32_t dimmed = pixel - (some >> 7 & 0x01010101U);
        words(run.out)[i] = (dimmed & 0x00FFFFFFU) | (words(other)[i] & 0xFF000000U);
    }
}

/// Bytes of a frame from which on pixels of two frames that are not mixed are drawn past the cache: that
/// takes no time but memory's.
constexpr std::int64_t largeMerge = std::int64_t{4} << 20;

/// Whether a run with this byte 3 is drawn past the cache, being part of a frame of at least `large` bytes.
bool streams(const Run& run, Fourth fourth, std::int64_t large) {
    // What is drawn from what it is drawn over is at hand.
    if (fourth == Fourth::kept && run.kept == run.out) return false;
    return canStream && run.frameBytes >= large && run.count >= shortestRun && bytesToLine(run.out) % 4 == 0;
}

/// The same for a run that is mixed: one that also gets its byte 3 from elsewhere waits for memory.
bool streamsMixed(const Run& run, Fourth fourth) {
    return streams(run, fourth, fourth == Fourth::kept ? largeMerge : largeFrame);
}

/// The same past the cache: a tile of whole lines is drawn and then stored. The run's ends are drawn in
/// place.
template <typename Loop, typename... Frame>
VANTLE_INLINE void drawLines(Run run, Loop loop, Frame... frames) {
    std::int32_t at = bytesToLine(run.out) / 4;
    loop(tail(run, 0, at), 0);
    while (run.count - at >= linePixels) {
        alignas(lineBytes) std::uint8_t lines[4 * tilePixels];
        Run part = tail(run, at, std::min(tilePixels, (run.count - at) / linePixels * linePixels));
        fetchNext(part, frames...);
        std::uint8_t* const out = std::exchange(part.out, lines);
        loop(part, at);
        streamLines(out, lines, 4 * part.count);
        at += part.count;
    }
    loop(tail(run, at, run.count - at), at);
}

}  // namespace

// Each loop that draws past the cache is a function of its own, so that the other one stays as it is.

static void streamColours(const Run& run, Source colours, Fourth fourth) {
    const std::int32_t first = bytesToLine(run.out) / 4;
    const std::int32_t end = first + (run.count - first) / linePixels * linePixels;
    const auto merge = [&](const Run& part) {
        mergeFourth(part.out, pixelsOf(part, colours), fourthOf(part, fourth), part.count);
    };
    merge(tail(run, 0, first));
    const Run lines = tail(run, first, end - first);
    streamMerged(lines.out, pixelsOf(lines, colours), fourthOf(lines, fourth), 4 * lines.count);
    merge(tail(run, end, run.count - end));
}

VANTLE_MULTIVERSION static void streamDimmed(const Run& run, Fourth fourth) {
    drawLines(run, [=](const Run& part, std::int32_t) VANTLE_INLINED { dim(part, fourth); });
}

template <Divisor divisor, bool each, typename Lanes>
VANTLE_INLINE void mixLines(const Run& run, Fourth fourth, Lanes lanes) {
    drawLines(run, [=](const Run& part, std::int32_t begin) VANTLE_INLINED {
        const auto partLanes = [=](Half* spread, std::int32_t first, std::int32_t count) {
            return lanes(spread, begin + first, count);
        };
        mixTiles<divisor, each>(part, fourth, partLanes);
    });
}

VANTLE_MULTIVERSION void meanWeights(Weight* means, const Weight* weights, Weight other, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) means[i] = static_cast<Weight>((weights[i] + other) >> 1);
}

VANTLE_MULTIVERSION void copyColours(const Run& run, Source colours, Fourth fourth) {
    const std::uint8_t* const pixels = pixelsOf(run, colours);
    const std::uint8_t* const other = fourthOf(run, fourth);
    if (pixels == other)  // as where a byte 3 is kept that is the same frame's
        copyBytes(run.out, pixels, 4 * run.count, run.frameBytes);
    else if (streams(run, fourth, largeMerge))
        streamColours(run, colours, fourth);
    else {
        // Loads and stores that lie across two lines each take twice as long.
        const std::int32_t head = run.count < shortestRun ? 0 : bytesToLine(run.out) / 4;
        mergeFourth(run.out, pixels, other, head);
        mergeFourth(run.out + 4 * head, pixels + 4 * head, other + 4 * head, run.count - head);
    }
}

namespace {

/// A weight once for each of a pixel's bytes.
VANTLE_INLINE std::uint32_t spreadWeight(Weight weight) { return weight * 0x01010101U; }

auto sameWeight(std::int32_t weight) {
    return [=](const Half*, std::int32_t, std::int32_t) {
        return [=](std::int32_t) { return static_cast<std::uint16_t>(257 * weight); };
    };
}

auto weightForEach(const Weight* weights) {
    return [=](Half* spread, std::int32_t first, std::int32_t count) {
        for (std::int32_t i = 0; i < count; ++i) words(spread)[i] = spreadWeight(weights[first + i]);
        return [each = static_cast<const Half*>(spread)](std::int32_t i) -> std::uint16_t { return each[i]; };
    };
}

}  // namespace

VANTLE_MULTIVERSION static void streamMixed(const Run& run, Divisor divisor, Fourth fourth,
                                            std::int32_t weight) {
    if (divisor == Divisor::by255)
        mixLines<Divisor::by255, false>(run, fourth, sameWeight(weight));
    else
        mixLines<Divisor::by256, false>(run, fourth, sameWeight(weight));
}

VANTLE_MULTIVERSION static void streamMixed(const Run& run, Divisor divisor, Fourth fourth,
                                            const Weight* weights) {
    if (divisor == Divisor::by255)
        mixLines<Divisor::by255, true>(run, fourth, weightForEach(weights));
    else
        mixLines<Divisor::by256, true>(run, fourth, weightForEach(weights));
}

/// All of one frame, as where all of the weight is its own.
static void showWhole(const Run& run, Source source, Fourth fourth) {
    if (fourth == Fourth::mixed) fourth = source == Source::to ? Fourth::ofTo : Fourth::ofFrom;
    copyColours(run, source, fourth);
}

VANTLE_MULTIVERSION void mix(const Run& run, Divisor divisor, Fourth fourth, std::int32_t weight) {
    if (divisor == Divisor::by256 && weight == 255) {
        // With another frame's byte 3 it is put together from two, more than it is mixed.
        if (streams(run, fourth, fourth == Fourth::mixed ? largeFrame : largeMerge))
            streamDimmed(run, fourth);
        else
            dim(run, fourth);
    } else if (divisor == Divisor::by255 && weight % 255 == 0) {
        showWhole(run, weight == 0 ? Source::from : Source::to, fourth);
    } else if (streamsMixed(run, fourth)) {
        streamMixed(run, divisor, fourth, weight);
    } else if (divisor == Divisor::by255) {
        mixTiles<Divisor::by255, false>(run, fourth, sameWeight(weight));
    } else {
        mixTiles<Divisor::by256, false>(run, fourth, sameWeight(weight));
    }
}

VANTLE_MULTIVERSION void mix(const Run& run, Divisor divisor, Fourth fourth, const Weight* weights) {
    if (streamsMixed(run, fourth))
        streamMixed(run, divisor, fourth, weights);
    else if (divisor == Divisor::by255)
        mixTiles<Divisor::by255, true>(run, fourth, weightForEach(weights));
    else
        mixTiles<Divisor::by256, true>(run, fourth, weightForEach(weights));
}

namespace {

// These take their run by value: what is written might else be the run itself, for all the compiler knows.

/// out[i] = pixelAt(i), in lines of sixteen: nothing is left to be drawn pixel by pixel but runs that are
/// shorter. The last line overlaps the one before, and is worked out before any is stored: a host may have a
/// frame drawn over one of its inputs.
template <typename PixelAt>
VANTLE_INLINE void drawLinewise(Run run, PixelAt pixelAt) {
    std::uint8_t* const out = run.out;
    const std::int32_t count = run.count;
    if (count < linePixels) {
        for (std::int32_t i = 0; i < count; ++i) words(out)[i] = pixelAt(i);
        return;
    }
    const std::int32_t last = count - linePixels;
    alignas(lineBytes) std::uint32_t lastLine[linePixels];
    for (std::int32_t i = 0; i < linePixels; ++i) lastLine[i] = pixelAt(last + i);
    for (std::int32_t first = 0; first < last; first += linePixels) {
        if (first % tilePixels == 0)
            fetchNext(tail(run, first, std::min(tilePixels, count - first)), &Run::from, &Run::to, &Run::out);
        alignas(lineBytes) std::uint32_t line[linePixels];
        for (std::int32_t i = 0; i < linePixels; ++i) line[i] = pixelAt(first + i);
        std::memcpy(out + std::ptrdiff_t{4} * first, line, sizeof line);
    }
    std::memcpy(out + std::ptrdiff_t{4} * last, lastLine, sizeof lastLine);
}

template <typename ShareAt>
VANTLE_INLINE void fadeWords(Run run, ShareAt shareAt) {
    drawLinewise(run, [=](std::int32_t i) {
        return blendPixel(words(run.from)[i], words(run.to)[i], [share = shareAt(i)](float from, float to) {
            return (from - to) * share + lowered(to);
        });
    });
}

VANTLE_INLINE void mixWords(Run run, const float* weights) {
    drawLinewise(run, [=](std::int32_t i) {
        const Parts ofTo(weights[i]), ofFrom(255.0F - weights[i]);
        return blendPixel(words(run.from)[i], words(run.to)[i], [=](float from, float to) {
            return ofTo.of(lowered(to)) + ofFrom.of(lowered(from));
        });
    });
}

VANTLE_INLINE void chooseWords(Run run, const std::uint32_t* ranks, std::uint32_t end) {
    for (std::int32_t i = 0; i < run.count; ++i) {
        // No branch: the order of the ranks has no pattern to foretell.
        const std::uint32_t chosen = ranks[i] < end ? 0xFFFFFFFFU : 0U;
        words(run.out)[i] = (words(run.to)[i] & chosen) | (words(run.from)[i] & ~chosen);
    }
}

VANTLE_INLINE void weaveWords(Run run, std::uint32_t woven, const Weight* weights) {
    for (std::int32_t i = 0; i < run.count; ++i) {
        const std::uint32_t shown = woven & static_cast<std::uint32_t>(static_cast<std::int8_t>(weights[i]));
        words(run.out)[i] = (words(run.to)[i] & shown) | (words(run.from)[i] & ~shown);
    }
}

VANTLE_INLINE void blackenWords(Run run) {
    for (std::int32_t i = 0; i < run.count; ++i) words(run.out)[i] = words(run.kept)[i] & 0xFF000000U;
}

/// Pixels from anywhere, sixteen at a time. `merge(pixelAt(i), i)` is what the output gets.
template <typename PixelAt, typename Merge>
VANTLE_INLINE void gatherWords(std::uint8_t* out, std::int32_t count, PixelAt pixelAt, Merge merge) {
    const auto drawLine = [=](std::int32_t first) VANTLE_INLINED {
        alignas(lineBytes) std::uint32_t line[linePixels];
        loadEach(line, [=](std::int32_t i) { return pixelAt(first + i); });
        for (std::int32_t i = 0; i < linePixels; ++i) line[i] = merge(line[i], first + i);
        std::memcpy(out + std::ptrdiff_t{4} * first, line, sizeof line);
    };
    if (count < linePixels) {
        for (std::int32_t i = 0; i < count; ++i) words(out)[i] = merge(pixelAt(i), i);
        return;
    }
    std::int32_t first = 0;
    for (; first + linePixels <= count; first += linePixels) drawLine(first);
    if (first < count) drawLine(count - linePixels);  // once more in part
}

auto wholePixel(const std::uint8_t* pixels, const std::int32_t* columns) {
    return [=](std::int32_t i) -> std::uint32_t { return words(pixels)[columns[i]]; };
}

constexpr auto unchanged = [](std::uint32_t pixel, std::int32_t) { return pixel; };

VANTLE_INLINE void sampleWords(Run run, const std::uint8_t* pixels, const std::int32_t* columns) {
    gatherWords(run.out, run.count, wholePixel(pixels, columns), [=](std::uint32_t pixel, std::int32_t i) {
        return (pixel & 0x00FFFFFFU) | (words(run.kept)[i] & 0xFF000000U);
    });
}

}  // namespace

VANTLE_MULTIVERSION void mixSingle(const Run& run, const Weight* weights) {
    for (std::int32_t first = 0; first < run.count; first += tilePixels) {
        const Run tile = tail(run, first, std::min(tilePixels, run.count - first));
        float spread[tilePixels];
        for (std::int32_t i = 0; i < tile.count; ++i) spread[i] = weights[first + i];
        mixWords(tile, spread);
    }
}

VANTLE_MULTIVERSION void fade(const Run& run, float share) {
    fadeWords(run, [=](std::int32_t) { return share; });
}

VANTLE_MULTIVERSION void fade(const Run& run, const float* shares) {
    fadeWords(run, [=](std::int32_t i) { return shares[i]; });
}

VANTLE_MULTIVERSION static void streamBlack(const Run& run) {
    drawLines(
        run, [](const Run& part, std::int32_t) VANTLE_INLINED { blackenWords(part); }, &Run::kept);
}

VANTLE_MULTIVERSION void blacken(const Run& run) {
    if (streams(run, Fourth::kept, largeMerge))
        streamBlack(run);
    else
        drawTiles(
            run, [](const Run& part, std::int32_t) VANTLE_INLINED { blackenWords(part); }, &Run::kept);
}

VANTLE_MULTIVERSION void shade(const Run& run, Source source, const Shade& shade) {
    const std::uint16_t digits = shade.digits, a = shade.less[0], b = shade.less[1], c = shade.less[2];
    const auto shaded = [=](std::uint16_t byte) {
        const int lower = (byte == a ? 1 : 0) + (byte == b ? 1 : 0) + (byte == c ? 1 : 0);
        return static_cast<std::uint16_t>(upperHalf(byte, digits) - lower);
    };
    for (std::int32_t first = 0; first < run.count; first += tilePixels) {
        Run tile = tail(run, first, std::min(tilePixels, run.count - first));
        tile.kept = pixelsOf(tile, source);
        fetchNext(tile, &Run::kept, &Run::out);
        if (digits == 0) {
            blackenWords(tile);
            continue;
        }
        alignas(lineBytes) Half line[2 * tilePixels];
        for (std::int32_t i = 0; i < 2 * tile.count; ++i) {
            const std::uint16_t lane = halves(tile.kept)[i];
            line[i] = static_cast<std::uint16_t>(shaded(lane & 255) | shaded(lane >> 8) << 8);
        }
        mergeFourth(tile.out, line, tile.kept, tile.count);
    }
}

VANTLE_MULTIVERSION static void streamWoven(const Run& run, std::uint32_t woven, const Weight* weights) {
    drawLines(run, [=](const Run& part, std::int32_t first)
                       VANTLE_INLINED { weaveWords(part, woven, weights + first); });
}

VANTLE_MULTIVERSION void weave(const Run& run, Fourth fourth, const Weight* weights) {
    const std::uint32_t woven = fourth == Fourth::mixed ? 0xFFFFFFFFU : 0x00FFFFFFU;
    if (streams(run, fourth, largeMerge))
        streamWoven(run, woven, weights);
    else
        weaveWords(run, woven, weights);
}

VANTLE_MULTIVERSION static void streamChosen(const Run& run, const std::uint32_t* ranks, std::uint32_t end) {
    drawLines(run, [=](const Run& part, std::int32_t first)
                       VANTLE_INLINED { chooseWords(part, ranks + first, end); });
}

VANTLE_MULTIVERSION void choose(const Run& run, const std::uint32_t* ranks, std::uint32_t end) {
    if (streams(run, Fourth::mixed, largeMerge))
        streamChosen(run, ranks, end);
    else
        chooseWords(run, ranks, end);
}

VANTLE_MULTIVERSION void pick(const Run& run, const std::uint32_t* pixels, std::ptrdiff_t origin,
                              const std::int32_t* places) {
    const auto pixelAt = [places, from = pixels + origin](std::int32_t i) { return from[places[i]]; };
    gatherWords(run.out, run.count, pixelAt, unchanged);
}

VANTLE_MULTIVERSION void gather(std::uint32_t* out, const std::uint8_t* pixels, const std::int32_t* columns,
                                std::int32_t count) {
    gatherWords(reinterpret_cast<std::uint8_t*>(out), count, wholePixel(pixels, columns), unchanged);
}

VANTLE_MULTIVERSION static void streamSampled(const Run& run, const std::uint8_t* pixels,
                                              const std::int32_t* columns) {
    drawLines(run, [=](const Run& part, std::int32_t first)
                       VANTLE_INLINED { sampleWords(part, pixels, columns + first); });
}

VANTLE_MULTIVERSION void sample(const Run& run, const std::uint8_t* pixels, const std::int32_t* columns) {
    if (streams(run, Fourth::kept, largeMerge))
        streamSampled(run, pixels, columns);
    else
        sampleWords(run, pixels, columns);
}

VANTLE_MULTIVERSION void sampleFaded(const Run& run, const std::uint8_t* over, const std::int32_t* columns,
                                     const std::uint32_t* under, float opacity) {
    const float rest = 1.0F - opacity;
    gatherWords(run.out, run.count, wholePixel(over, columns),
                [=, kept = run.kept](std::uint32_t pixel, std::int32_t i) {
                    const std::uint32_t faded = blendPixel(pixel, under[i], [=](float a, float b) {
                        return lowered(a) * opacity + lowered(b) * rest;
                    });
                    return (faded & 0x00FFFFFFU) | (words(kept)[i] & 0xFF000000U);
                });
}

}  // namespace vantle
