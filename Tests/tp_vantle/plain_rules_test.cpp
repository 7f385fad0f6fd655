#include "plain_rules.h"

#include <random>

using namespace tests;

class PlainRules : public testing::TestWithParam<PlainRule> {};

INSTANTIATE_TEST_SUITE_P(All, PlainRules, testing::ValuesIn(plainRules().begin(), plainRules().end()),
                         [](const auto& tested) { return tested.param.function; });

// In some thousand frames: at both ends, at and near the moment, at ties of rounding and at random.
TEST_P(PlainRules, DrawEveryByteAsTheLibraryDoes) {
    const PlainRule rule = GetParam();
    TransFunc* const draw = transition(rule.function);
    constexpr Geometry large[] = {{321, 180, 0}, {97, 250, 0}, {4201, 51, 0}, {8203, 3, 0}};
    std::mt19937 random(7);
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto part = [&below](int parts) { return below(parts) / static_cast<double>(parts); };
    for (int i = 0; i < 400; ++i) {
        Geometry g{1 + below(1 + below(64)), 1 + below(1 + below(64)), 0};
        if (i % 100 == 0) g = large[i / 100];
        g.pitch = 4 * g.width + below(2) * below(20);
        Scene scene(g, i % 2 == 0 ? Guard::before : Guard::after);
        const int frames = 1 + below(100);
        for (const double t :
             {0.0, 1e-9, 0.001, 1 / 3.0, 0.999, 1 - 1e-9, 1.0, rule.moment,
              rule.moment + (part(1 << 20) - 0.5) / 300, part(frames), part(2 * g.width), part(2 * g.height),
              rule.lowest + (rule.highest - rule.lowest) * part(1 << 20), part(1 << 20)}) {
            const double duration = std::array{1.0, 0.7, frames / 1.0}[random() % 3];
            const TransParam at{.hostFields = {}, .dDuration = duration, .dPosition = t * duration};
            ASSERT_TRUE(scene.draw(draw, &at).out == rule.draw(scene, at.dPosition, duration))
                << t << " of " << duration << ", " << g.width << "x" << g.height << ", pitch " << g.pitch;
        }
    }
}
