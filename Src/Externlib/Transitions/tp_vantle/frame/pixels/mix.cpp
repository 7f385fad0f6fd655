#include "frame/pixels/driver.h"
#include "frame/pixels/single_precision.h"

namespace vantle {

namespace {

VANTLE_INLINE std::uint16_t upperHalf(std::uint16_t a, std::uint16_t b) {
    return static_cast<std::uint16_t>(std::uint32_t{a} * b >> 16);
}

/// One lane mixed: `weights` is the weight of imgTo, twice. `any`: whether it may be 0 or 255.
template <Division division, bool any>
VANTLE_INLINE std::uint16_t mixLane(std::uint16_t from, std::uint16_t to, std::uint16_t weights) {
    std::uint16_t low = 0, high = 0;
    if constexpr (division == Division::by256) {
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

// Whose weight pixel i of a run has.

struct SameWeight {
    static constexpr bool any = false;  // neither 0 nor 255
    Weight weight;
    VANTLE_INLINE Weight operator()(std::int32_t) const { return weight; }
};

struct EachWeight {
    static constexpr bool any = true;
    const Weight* weights;
    VANTLE_INLINE Weight operator()(std::int32_t i) const { return weights[i]; }
};

struct MeanWeight {
    static constexpr bool any = true;
    const Weight* weights;
    Weight other;
    VANTLE_INLINE Weight operator()(std::int32_t i) const {
        return static_cast<Weight>((weights[i] + other) >> 1);
    }
};

template <Division division, bool fourthMixed, typename WeightAt>
VANTLE_INLINE void mixTile(const Run& tile, std::int32_t first, WeightAt weightAt) {
    const auto mixInto = [&](Lane* out) VANTLE_INLINED {
        if constexpr (WeightAt::any) {
            alignas(cacheLine) Lane spread[2 * tilePixels];  // each weight once for each of its pixel's bytes
            for (std::int32_t i = 0; i < tile.count; ++i)
                words(spread)[i] = weightAt(first + i) * 0x01010101U;
            for (std::int32_t i = 0; i < 2 * tile.count; ++i)
                // NOLINTBEGIN(clang-analyzer-core.*): the weights are written as words
                out[i] = mixLane<division, true>(lanes(tile.from)[i], lanes(tile.to)[i], spread[i]);
            // NOLINTEND(clang-analyzer-core.*)
        } else {
            const auto weights = static_cast<std::uint16_t>(257 * weightAt(first));
            for (std::int32_t i = 0; i < 2 * tile.count; ++i)
                out[i] = mixLane<division, false>(lanes(tile.from)[i], lanes(tile.to)[i], weights);
        }
    };
    if constexpr (fourthMixed) {
        mixInto(lanes(tile.out));
    } else {
        alignas(cacheLine) Lane mixed[2 * tilePixels];
        mixInto(mixed);
        for (std::int32_t i = 0; i < tile.count; ++i)
            // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): written as lanes
            words(tile.out)[i] = withFourth(words(mixed)[i], words(tile.fourth)[i]);
    }
}

template <Division division, typename WeightAt>
VANTLE_INLINE void mixRun(const Run& run, WeightAt weightAt) {
    constexpr auto waits = WeightAt::any ? WaitsFor::processor : WaitsFor::memory;
    if (run.fourth == nullptr)
        draw<waits>(run, [=](const Run& tile, std::int32_t first)
                             VANTLE_INLINED { mixTile<division, true>(tile, first, weightAt); });
    else
        draw<waits>(run, [=](const Run& tile, std::int32_t first)
                             VANTLE_INLINED { mixTile<division, false>(tile, first, weightAt); });
}

/// imgTo at full weight of 256ths: v * 255 / 256, which is v - 1 for all v but 0.
VANTLE_INLINE void dim(const Run& run) {
    draw(run, [](const Run& tile, std::int32_t) VANTLE_INLINED {
        for (std::int32_t i = 0; i < tile.count; ++i) {
            const Pixel pixel = words(tile.to)[i];
            // The top bit of each byte, whether it is more than 0.
            const Pixel some = pixel | ((pixel & 0x7F7F7F7FU) + 0x7F7F7F7FU);
            const Pixel dimmed = pixel - (some >> 7 & 0x01010101U);
            words(tile.out)[i] = tile.fourth == nullptr ? dimmed : withFourth(dimmed, words(tile.fourth)[i]);
        }
    });
}

VANTLE_INLINE void mixSingle(const Run& run, const Weight* weights) {
    draw<WaitsFor::processor>(run, [=](const Run& tile, std::int32_t first) VANTLE_INLINED {
        float spread[tilePixels];
        for (std::int32_t i = 0; i < tile.count; ++i) spread[i] = weights[first + i];
        drawPixels(tile, [&](std::int32_t i) VANTLE_INLINED {
            const Quotient ofTo(spread[i]), ofFrom(255.0F - spread[i]);
            return blendPixel(words(tile.from)[i], words(tile.to)[i], [=](float from, float to) {
                return ofTo.of(lowered(to)) + ofFrom.of(lowered(from));
            });
        });
    });
}

}  // namespace

VANTLE_MULTIVERSION void mix(const Run& run, Division division, std::int32_t weight) {
    if (division == Division::by256 && weight == 255)
        dim(run);
    else if (division == Division::by255 && weight % 255 == 0)
        copy(run, weight == 0 ? run.from : run.to);
    else if (division == Division::by255)
        mixRun<Division::by255>(run, SameWeight{static_cast<Weight>(weight)});
    else
        mixRun<Division::by256>(run, SameWeight{static_cast<Weight>(weight)});
}

VANTLE_MULTIVERSION void mix(const Run& run, Division division, const Weight* weights) {
    if (division == Division::by255)
        mixRun<Division::by255>(run, EachWeight{weights});
    else if (division == Division::by256)
        mixRun<Division::by256>(run, EachWeight{weights});
    else
        mixSingle(run, weights);
}

VANTLE_MULTIVERSION void mixMean(const Run& run, const Weight* weights, Weight other) {
    mixRun<Division::by255>(run, MeanWeight{weights, other});
}

}  // namespace vantle
