// Draws what the input says: any transition, geometry, claims and position. Sanitizers and inaccessible pages
// watch it; where there is a plain rule the output must be as it has it, to the byte.
#include <fuzzer/FuzzedDataProvider.h>

#include <bit>
#include <cmath>

#include "effects.h"
#include "plain_rules.h"

using namespace tests;

static double anyDouble(FuzzedDataProvider& input) {
    return std::bit_cast<double>(input.ConsumeIntegral<std::uint64_t>());
}

/// Draws without a door, as frames of another size or order of rows are drawn on another processor.
static Bytes drawnOtherwise(FuzzedDataProvider& input, Scene& scene, vantle::Effect* draw, double position,
                            double duration) {
    using vantle::Level;
    const Geometry& g = scene.geometry;
    const bool topDown = input.ConsumeBool();
    const auto turned = [&](const Bytes& frame) { return topDown ? turnedOver(frame, g.pitch) : frame; };
    const auto from = guarded(turned(scene.from), Guard::after, PROT_READ);
    const auto to = guarded(turned(scene.to), Guard::before, PROT_READ);
    const auto out = guarded(turned(scene.before), Guard::after, PROT_READ | PROT_WRITE);
    using Streaming = vantle::Stage::Streaming;
    const vantle::Stage stage(g.width, g.height, topDown ? -g.pitch : g.pitch, out.get(), from.get(),
                              to.get(), input.ConsumeBool() ? Streaming::always : Streaming::ofLargeFrames);
    vantle::testedLevel = input.PickValueInArray({Level::base, Level::avx2, Level::avx512});
    draw(stage, {duration, position});
    return turned({out.get(), out.get() + scene.before.size()});
}

/// What a host may say of a frame: at most what is there, or what no library may believe.
static Claim anyClaim(FuzzedDataProvider& input, const Geometry& g) {
    Claim claim{.width = g.width, .height = g.height, .pitch = g.pitch};
    const int wrong = input.ConsumeIntegralInRange(0, 40);  // most often nothing
    if (wrong == 0) claim.height = input.ConsumeIntegralInRange(INT32_MIN, g.height);
    if (wrong == 1) claim.pitch = input.ConsumeIntegralInRange(INT32_MIN, g.pitch);
    if (wrong == 2) claim.width = input.ConsumeIntegralInRange(INT32_MIN, g.width);
    if (wrong == 3) claim.bitCount = input.ConsumeIntegral<std::int32_t>();
    if (wrong == 6) claim.pitch = 1 << 30, claim.height = std::max(2, g.height);
    claim.handle = wrong != 4;
    claim.bits = wrong != 5;
    return claim;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const Traits& traits = input.PickValueInArray(transitionTable);
    const bool wide = input.ConsumeBool();  // enough for runs that are streamed
    Geometry g{input.ConsumeIntegralInRange(0, wide ? 1500 : 150),
               input.ConsumeIntegralInRange(0, wide ? 9 : 90), 0};
    g.pitch = 4 * g.width + input.ConsumeIntegralInRange(0, 9);
    const bool whole = input.ConsumeBool();
    const double duration = whole ? input.ConsumeIntegralInRange(1, 1000) : anyDouble(input);
    const double position =
        input.ConsumeBool() ? input.ConsumeProbability<double>() * duration : anyDouble(input);
    const auto out = anyClaim(input, g), from = anyClaim(input, g), to = anyClaim(input, g);

    Scene scene(g, input.ConsumeBool() ? Guard::before : Guard::after);
    const auto at = param(position, duration);
    scene.drawUnder({out, from, to}, transition(traits.function), at.get());
    const Bytes drawn = scene.out;
    if (scene.drawUnder({out, from, to}, transition(traits.function), at.get()).out != drawn) std::abort();

    const auto isWhole = [&g](const Claim& claim) {
        return claim.handle && claim.bits && claim.width == g.width && claim.height == g.height &&
               claim.pitch == g.pitch && claim.bitCount == 32;
    };
    if (!isWhole(out) || !isWhole(from) || !isWhole(to)) return 0;
    for (const auto& [function, draw] : effects)
        if (function == std::string_view(traits.function) && function != std::string_view("TrFadeNew") &&
            drawnOtherwise(input, scene, draw, position, duration) != drawn)
            std::abort();
    // The rules are for what a host sends.
    const double t = position / duration;
    if (!(duration >= 1e-9 && duration <= 1e9) || g.width == 0) return 0;
    const PlainRule* const rule = plainRuleOf(traits.function);
    if (rule != nullptr && t >= rule->lowest && t <= rule->highest &&
        rule->draw(scene, position, duration) != drawn)
        std::abort();
    return 0;
}
