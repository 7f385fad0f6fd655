#include "frame/pixels.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "frame/loops.h"
#include "frame/multiversion.h"
#include "frame/single_precision.h"
#include "frame/streaming.h"

namespace vantle {

namespace {

VANTLE_INLINE std::uint16_t upperHalf(std::uint16_t a, std::uint16_t b) {
    return static_cast<std::uint16_t>(std::uint32_t{a} * b >> 16);
}

/// One lane mixed: `weights` is the weight of imgTo, twice. `any`: whether it may be 0 or 255.
template <Divisor divisor, bool any>
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
        if constexpr (any) {
            // Their factors being 0 and 1, nothing has been mixed of these yet.
            const auto allFrom = static_cast<std::uint16_t>(-static_cast<int>(weights == 0));
            const auto allTo = static_cast<std::uint16_t>(-static_cast<int>(weights == 0xFFFF));
            low = static_cast<std::uint16_t>(low | (from & allFrom) | (to & allTo));
        }
    }
    return static_cast<std::uint16_t>(low | high << 8);
}

/// The same weight for each pixel, where there might be an array of them.
struct SameWeight {
    Weight weight;
    SameWeight operator+(std::int32_t) const { return *this; }
};

/// Mixes the lanes of a tile: `lanes(i)` is the weight of imgTo in lane i, twice. Byte 3 is mixed too, or
/// that of `other`.
template <Divisor divisor, bool each, bool fourthMixed, typename Lanes>
VANTLE_INLINE void mixLanes(const Run& tile, const std::uint8_t* other, Lanes lanes) {
    const auto mixInto = [&](Half* out) VANTLE_INLINED {
        for (std::int32_t i = 0; i < 2 * tile.count; ++i)
            out[i] = mixHalf<divisor, each>(halves(tile.from)[i], halves(tile.to)[i], lanes(i));
    };
    if constexpr (fourthMixed) {
        mixInto(halves(tile.out));
    } else {
        alignas(lineBytes) Half mixed[2 * tilePixels];
        mixInto(mixed);
        mergeFourth(tile.out, mixed, other, tile.count);
    }
}

/// Mixes a tile by one weight, which is neither 0 nor 255.
template <Divisor divisor, bool fourthMixed>
VANTLE_INLINE void mixTile(const Run& tile, const std::uint8_t* other, SameWeight same) {
    const auto lane = static_cast<std::uint16_t>(257 * same.weight);
    mixLanes<divisor, false, fourthMixed>(tile, other, [=](std::int32_t) { return lane; });
}

/// Mixes a tile by a weight for each pixel.
template <Divisor divisor, bool fourthMixed>
VANTLE_INLINE void mixTile(const Run& tile, const std::uint8_t* other, const Weight* weights) {
    alignas(lineBytes) Half spread[2 * tilePixels];  // each weight once for each of its pixel's bytes
    for (std::int32_t i = 0; i < tile.count; ++i) words(spread)[i] = weights[i] * 0x01010101U;
    const auto lane = [lanes = static_cast<const Half*>(spread)](std::int32_t i) -> std::uint16_t {
        return lanes[i];  // NOLINT(clang-analyzer-core.uninitialized.UndefReturn): written as words
    };
    mixLanes<divisor, true, fourthMixed>(tile, other, lane);
}

template <Divisor divisor, bool fourthMixed, typename Weights, typename... Frame>
VANTLE_INLINE void mixParts(const Run& run, Fourth fourth, Weights weights, Frame... frames) {
    const std::uint8_t* const other = fourthOf(run, fourth);
    drawParts(
        run,
        [=](const Run& part, std::int32_t first) VANTLE_INLINED {
            mixTile<divisor, fourthMixed>(part, other + std::ptrdiff_t{4} * first, weights + first);
        },
        frames...);
}

/// Mixes by `weights`: the same for all pixels, or an array.
template <Divisor divisor, typename Weights>
VANTLE_INLINE void mixWords(const Run& run, Fourth fourth, Weights weights) {
    const auto mixAndFetch = [=](auto... frames) VANTLE_INLINED {
        if (fourth == Fourth::mixed)
            mixParts<divisor, true>(run, fourth, weights, frames...);
        else
            mixParts<divisor, false>(run, fourth, weights, frames...);
    };
    if constexpr (std::is_same_v<Weights, SameWeight>)
        mixAndFetch();  // it takes no time but memory's
    else if (fourth == Fourth::kept)
        mixAndFetch(&Run::from, &Run::to, &Run::kept);
    else
        mixAndFetch(&Run::from, &Run::to);
}

/// imgTo at full weight of 256ths: v * 255 / 256, which is v - 1 for all v but 0. Byte 3 is treated likewise,
/// or that of `other`.
template <bool fourthMixed, typename... Frame>
VANTLE_INLINE void dimParts(const Run& run, const std::uint8_t* other, Frame... frames) {
    drawParts(
        run,
        [=](const Run& part, std::int32_t first) VANTLE_INLINED {
            if constexpr (fourthMixed) {
                for (std::int32_t i = 0; i < 4 * part.count; ++i)
                    part.out[i] = static_cast<std::uint8_t>(part.to[i] - (part.to[i] != 0 ? 1 : 0));
            } else {
                const Word* const fourths = words(other) + first;
                for (std::int32_t i = 0; i < part.count; ++i) {
                    const std::uint32_t pixel = words(part.to)[i];
                    // The top bit of each byte, whether it is more than 0.
                    const std::uint32_t some = pixel | ((pixel & 0x7F7F7F7FU) + 0x7F7F7F7FU);
                    words(part.out)[i] = withFourth(pixel - (some >> 7 & 0x01010101U), fourths[i]);
                }
            }
        },
        frames...);
}

VANTLE_INLINE void dim(const Run& run, Fourth fourth) {
    if (fourth == Fourth::mixed)
        dimParts<true>(run, nullptr, &Run::to);
    else
        dimParts<false>(run, fourthOf(run, fourth), &Run::to, frameOf(fourth));
}

/// Where a cache holds the frame, or a row goes on into the next, that comes by itself: the run with nothing
/// to be fetched ahead of it.
VANTLE_INLINE Run fetchedIfDimmed(Run run, Fourth fourth) {
    constexpr std::ptrdiff_t gap = 8 * lineBytes;
    const bool part = 4 * run.count + gap < run.ahead;
    if (run.pastCache != PastCache::everything || (fourth != Fourth::mixed && !part)) run.ahead = 0;
    return run;
}

/// Whether a run that is mixed is drawn past the cache: one that also gets its byte 3 from elsewhere waits
/// for memory.
bool streamsMixed(const Run& run, Fourth fourth) {
    return streams(run, fourth, fourth == Fourth::kept ? PastCache::merges : PastCache::everything);
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

VANTLE_MULTIVERSION void meanWeights(Weight* means, const Weight* weights, Weight other, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) means[i] = static_cast<Weight>((weights[i] + other) >> 1);
}

VANTLE_MULTIVERSION void copyColours(const Run& run, Source colours, Fourth fourth) {
    const std::uint8_t* const pixels = pixelsOf(run, colours);
    const std::uint8_t* const other = fourthOf(run, fourth);
    if (pixels == other)  // as where a byte 3 is kept that is the same frame's
        copyBytes(run.out, pixels, 4 * run.count, run.pastCache);
    else if (streams(run, fourth, PastCache::merges))
        streamColours(run, colours, fourth);
    else {
        // Loads and stores that lie across two lines each take twice as long.
        const std::int32_t head = run.count < shortestRun ? 0 : bytesToLine(run.out) / 4;
        mergeFourth(run.out, pixels, other, head);
        mergeFourth(run.out + 4 * head, pixels + 4 * head, other + 4 * head, run.count - head);
    }
}

/// Mixes a run where it belongs, or past the cache.
template <Divisor divisor, typename Weights>
VANTLE_INLINE void mixRun(const Run& run, Fourth fourth, Weights weights) {
    if (streamsMixed(run, fourth))
        drawLines(run, [=](const Run& part, std::int32_t first)
                           VANTLE_INLINED { mixWords<divisor>(part, fourth, weights + first); });
    else
        mixWords<divisor>(run, fourth, weights);
}

template <typename Weights>
VANTLE_INLINE void mixRun(const Run& run, Divisor divisor, Fourth fourth, Weights weights) {
    if (divisor == Divisor::by255)
        mixRun<Divisor::by255>(run, fourth, weights);
    else
        mixRun<Divisor::by256>(run, fourth, weights);
}

/// All of one frame, as where all of the weight is its own.
static void showWhole(const Run& run, Source source, Fourth fourth) {
    if (fourth == Fourth::mixed) fourth = source == Source::to ? Fourth::ofTo : Fourth::ofFrom;
    copyColours(run, source, fourth);
}

VANTLE_MULTIVERSION void mix(const Run& run, Divisor divisor, Fourth fourth, std::int32_t weight) {
    if (divisor == Divisor::by256 && weight == 255) {
        const Run dimmed = fetchedIfDimmed(run, fourth);
        // With another frame's byte 3 it is put together from two, more than it is mixed.
        if (streams(run, fourth, fourth == Fourth::mixed ? PastCache::everything : PastCache::merges))
            streamDimmed(dimmed, fourth);
        else
            dim(dimmed, fourth);
    } else if (divisor == Divisor::by255 && weight % 255 == 0) {
        showWhole(run, weight == 0 ? Source::from : Source::to, fourth);
    } else {
        mixRun(run, divisor, fourth, SameWeight{static_cast<Weight>(weight)});
    }
}

VANTLE_MULTIVERSION void mix(const Run& run, Divisor divisor, Fourth fourth, const Weight* weights) {
    if (fourth != Fourth::kept || run.kept != run.out) {
        mixRun(run, divisor, fourth, weights);
        return;
    }
    // Three frames are to be read: whole rows of them would not stay in the nearest cache until then.
    drawFetched(run, [=](const Run& part, std::int32_t first)
                         VANTLE_INLINED { mixRun(part, divisor, fourth, weights + first); });
}

namespace {

// These take their run by value: what is written might else be the run itself, for all the compiler knows.

/// out[i] = pixelAt(i)
template <typename PixelAt>
VANTLE_INLINE void drawWords(const Run& run, PixelAt pixelAt) {
    drawLinewise(
        run,
        [=](std::uint32_t* line, std::int32_t first, std::int32_t count) VANTLE_INLINED {
            for (std::int32_t i = 0; i < count; ++i) line[i] = pixelAt(first + i);
        },
        &Run::from, &Run::to);
}

template <typename ShareAt>
VANTLE_INLINE void fadeWords(Run run, ShareAt shareAt) {
    drawWords(run, [=](std::int32_t i) {
        return blendPixel(words(run.from)[i], words(run.to)[i], [share = shareAt(i)](float from, float to) {
            return (from - to) * share + lowered(to);
        });
    });
}

VANTLE_INLINE void mixSingleWords(Run run, const float* weights) {
    drawWords(run, [=](std::int32_t i) {
        const Parts ofTo(weights[i]), ofFrom(255.0F - weights[i]);
        return blendPixel(words(run.from)[i], words(run.to)[i], [=](float from, float to) {
            return ofTo.of(lowered(to)) + ofFrom.of(lowered(from));
        });
    });
}

constexpr std::uint32_t allBytes = 0xFFFFFFFF;

/// Of a pixel of imgTo that is shown.
constexpr std::uint32_t bytesOfTo(Fourth fourth) { return fourth == Fourth::mixed ? allBytes : 0x00FFFFFF; }

// What tells which bytes of pixel i are imgTo's and not imgFrom's.

struct Woven {
    std::uint32_t bytes;
    const Weight* weights;
    VANTLE_INLINE std::uint32_t operator()(std::int32_t i) const {
        return bytes & static_cast<std::uint32_t>(static_cast<std::int8_t>(weights[i]));
    }
};

struct Windowed {
    std::int32_t first, end;
    std::uint32_t inside, outside;
    VANTLE_INLINE std::uint32_t operator()(std::int32_t i) const {
        return i >= first && i < end ? inside : outside;
    }
};

struct Ranked {
    const std::uint32_t* ranks;
    std::uint32_t end;
    VANTLE_INLINE std::uint32_t operator()(std::int32_t i) const {
        return ranks[i] < end ? allBytes : 0;  // no branch: the order of the ranks has no pattern to foretell
    }
};

/// Bytes of imgTo where `shownAt(i)` has ones, and of imgFrom.
template <typename ShownAt>
VANTLE_INLINE void showWords(Run run, ShownAt shownAt) {
    for (std::int32_t i = 0; i < run.count; ++i) {
        const std::uint32_t shown = shownAt(i);
        words(run.out)[i] = (words(run.to)[i] & shown) | (words(run.from)[i] & ~shown);
    }
}

template <typename ShownAt>
VANTLE_INLINE void streamWords(const Run& run, ShownAt shownAt) {
    drawLines(run, [=](const Run& part, std::int32_t first) VANTLE_INLINED {
        showWords(part, [=](std::int32_t i) { return shownAt(first + i); });
    });
}

VANTLE_INLINE void blackenWords(Run run) {
    for (std::int32_t i = 0; i < run.count; ++i) words(run.out)[i] = words(run.kept)[i] & 0xFF000000U;
}

VANTLE_INLINE void blackenParts(Run run) {
    if (run.pastCache != PastCache::everything)
        run.ahead = 0;  // where a cache holds it, a single frame comes by itself
    drawParts(
        run, [](const Run& tile, std::int32_t) VANTLE_INLINED { blackenWords(tile); }, &Run::kept);
}

}  // namespace

VANTLE_MULTIVERSION void mixSingle(const Run& run, const Weight* weights) {
    for (std::int32_t first = 0; first < run.count; first += tilePixels) {
        const Run tile = tail(run, first, std::min(tilePixels, run.count - first));
        float spread[tilePixels];
        for (std::int32_t i = 0; i < tile.count; ++i) spread[i] = weights[first + i];
        mixSingleWords(tile, spread);
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
    if (streams(run, Fourth::kept, PastCache::merges))
        streamBlack(run);
    else
        blackenParts(run);
}

VANTLE_MULTIVERSION void shade(const Run& run, Source source, const Shade& shade) {
    const std::uint16_t digits = shade.digits, a = shade.less[0], b = shade.less[1], c = shade.less[2];
    const auto shaded = [=](std::uint16_t byte) {
        const int lower = (byte == a ? 1 : 0) + (byte == b ? 1 : 0) + (byte == c ? 1 : 0);
        return static_cast<std::uint16_t>(upperHalf(byte, digits) - lower);
    };
    Run shown = run;
    shown.kept = pixelsOf(run, source);
    if (digits == 0) {
        blackenParts(shown);
        return;
    }
    drawParts(
        shown,
        [=](const Run& tile, std::int32_t) VANTLE_INLINED {
            alignas(lineBytes) Half lanes[2 * tilePixels];
            for (std::int32_t i = 0; i < 2 * tile.count; ++i) {
                const std::uint16_t lane = halves(tile.kept)[i];
                lanes[i] = static_cast<std::uint16_t>(shaded(lane & 255) | shaded(lane >> 8) << 8);
            }
            mergeFourth(tile.out, lanes, tile.kept, tile.count);
        },
        &Run::kept, &Run::out);
}

VANTLE_MULTIVERSION static void streamWoven(const Run& run, Woven shown) { streamWords(run, shown); }

VANTLE_MULTIVERSION void weave(const Run& run, Fourth fourth, const Weight* weights) {
    const Woven shown{bytesOfTo(fourth), weights};
    if (streams(run, fourth, PastCache::merges))
        streamWoven(run, shown);
    else
        showWords(run, shown);
}

VANTLE_MULTIVERSION static void streamWindow(const Run& run, Windowed shown) { streamWords(run, shown); }

VANTLE_MULTIVERSION void window(const Run& run, Source inside, Fourth fourth, std::int32_t first,
                                std::int32_t end) {
    const std::uint32_t bytes = bytesOfTo(fourth);
    const bool insideTo = inside == Source::to;
    const Windowed shown{first, end, insideTo ? bytes : 0, insideTo ? 0 : bytes};
    if (streams(run, fourth, PastCache::merges))
        streamWindow(run, shown);
    else
        showWords(run, shown);
}

VANTLE_MULTIVERSION static void streamRanked(const Run& run, Ranked shown) { streamWords(run, shown); }

VANTLE_MULTIVERSION void choose(const Run& run, const std::uint32_t* ranks, std::uint32_t end) {
    const Ranked shown{ranks, end};
    // The ranks take longer than the pixels: past the cache, smaller frames gain nothing, and whoever reads
    // them loses.
    if (streams(run, Fourth::mixed, PastCache::everything))
        streamRanked(run, shown);
    else
        showWords(run, shown);
}

}  // namespace vantle
