#include "plain_rules.h"

#include <cmath>
#include <random>

using namespace tests;

class PlainRules : public testing::TestWithParam<PlainRule> {};

INSTANTIATE_TEST_SUITE_P(All, PlainRules, testing::ValuesIn(plainRules().begin(), plainRules().end()),
                         [](const auto& tested) { return tested.param.function; });

// In some thousand frames: at both ends, at and closer and closer to the moments, at ties of rounding and at
// random. Halves of these durations, eased, differ in their last bit from one half.
TEST_P(PlainRules, DrawEveryByteAsTheLibraryDoes) {
    const PlainRule rule = GetParam();
    TransFunc* const draw = transition(rule.function);
    // More columns than are worked out at a time, more rows than a soft edge, a slant that single precision
    // cuts.
    constexpr Geometry large[] = {{321, 180, 0}, {97, 250, 0}, {4201, 51, 0}, {8203, 3, 0}, {60, 52, 0}};
    std::mt19937 random(7);
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto part = [&below](int parts) { return below(parts) / static_cast<double>(parts); };
    for (int i = 0; i < 400; ++i) {
        Geometry g{1 + below(1 + below(64)), 1 + below(1 + below(64)), 0};
        if (i % 80 == 0) g = large[i / 80];
        g.pitch = 4 * g.width + below(2) * below(20);
        Scene scene(g, i % 2 == 0 ? Guard::before : Guard::after);
        const int frames = 1 + below(100);
        const auto near = [&] {
            const double moment = rule.moments[below(4)];
            return (moment > 0 ? moment : 0.5) + std::ldexp(part(1 << 20) - 0.5, -8 - below(36));
        };
        for (const double t : {0.0, 1e-9, 0.001, 1 / 3.0, 0.5, 0.999, 1 - 1e-9, 1.0, rule.moments[0], near(),
                               near(), part(frames), part(2 * g.width), part(2 * g.height),
                               rule.lowest + (rule.highest - rule.lowest) * part(1 << 20), part(1 << 20)}) {
            const double duration = std::array{1.0, 0.7, 3.4, 3.9, frames / 1.0}[random() % 5];
            const double position = std::clamp(t, rule.lowest, rule.highest) * duration;
            const TransParam at{.hostFields = {}, .dDuration = duration, .dPosition = position};
            ASSERT_TRUE(scene.draw(draw, &at).out == rule.draw(scene, position, duration))
                << t << " of " << duration << ", " << g.width << "x" << g.height << ", pitch " << g.pitch;
        }
    }
}
