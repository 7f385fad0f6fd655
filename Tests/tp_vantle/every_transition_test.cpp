// What holds for all transitions alike, whatever they draw.
#include <pthread.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>

#include "plain_rules.h"

using namespace tests;

class EveryTransition : public testing::TestWithParam<Traits> {
   protected:
    const Traits traits = GetParam();
    TransFunc* const draw = transition(traits.function);
};

INSTANTIATE_TEST_SUITE_P(All, EveryTransition, testing::ValuesIn(transitionTable),
                         [](const auto& tested) { return tested.param.function; });

TEST_P(EveryTransition, StartsAndEndsOnWholeFrames) {
    Scene scene({64, 32, 256});
    for (const auto& [position, source] : {std::pair{0.0, traits.first}, {1.0, traits.last}}) {
        if (source == std::string(other)) continue;
        EXPECT_EQ(scene.draw(draw, position).runs(0, 4, 64 * 32, 4), std::string("2048") + source);
    }
}

// In some thousand frames: at both ends, at and closer and closer to the moments, at ties of rounding and at
// random. Halves of these durations, eased, differ in their last bit from one half.
TEST_P(EveryTransition, DrawsEveryByteAsItsPlainRuleDoes) {
    if (traits.function == std::string("TrFadeNew")) return;  // whose order is another every time
    const PlainRule* const rule = plainRuleOf(traits.function);
    ASSERT_NE(rule, nullptr) << "what it draws is put plainly nowhere";
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
            const double moment = rule->moments[below(4)];
            return (moment > 0 ? moment : 0.5) + std::ldexp(part(1 << 20) - 0.5, -8 - below(36));
        };
        for (const double t :
             {0.0, 1e-9, 0.001, 1 / 3.0, 0.5, 0.999, 1 - 1e-9, 1.0, rule->moments[i % 4], near(), near(),
              part(frames), part(2 * g.width), part(2 * g.height),
              rule->lowest + (rule->highest - rule->lowest) * part(1 << 20), part(1 << 20)}) {
            const double duration = std::array{1.0, 0.7, 3.4, 3.9, frames / 1.0}[random() % 5];
            const double position = std::clamp(t, rule->lowest, rule->highest) * duration;
            const TransParam at{.hostFields = {}, .dDuration = duration, .dPosition = position};
            ASSERT_TRUE(scene.draw(draw, &at).out == rule->draw(scene, position, duration))
                << t << " of " << duration << ", " << g.width << "x" << g.height << ", pitch " << g.pitch;
        }
    }
}

// Some megabytes, as films have them: rows reach from one end of a cache to the other.
TEST(LargeFrame, IsDrawnAsThePlainRulesSay) {
    Scene scene({1920, 1080, 7680});
    for (const Traits& traits : transitionTable)
        if (const PlainRule* const rule = plainRuleOf(traits.function); rule != nullptr) {
            EXPECT_TRUE(scene.draw(transition(traits.function), 0.505).out == rule->draw(scene, 0.505, 1.0))
                << traits.function;
        }
}

TEST_P(EveryTransition, TakesUnusablePositionsForTheNearestEnd) {
    Scene scene({45, 31, 187});
    const Bytes first = scene.draw(draw, 0.0).out;
    const Bytes middle = scene.draw(draw, 0.505).out;
    const Bytes last = scene.draw(draw, 1.0).out;
    EXPECT_TRUE(first != middle && middle != last && last != first);
    EXPECT_EQ(scene.draw(draw, nullptr).out, first);
    for (const double duration : {0.0, -1.0, double{NAN}, double{INFINITY}})
        for (const double position : {0.5, -2.0})
            EXPECT_EQ(scene.draw(draw, position, duration).out, first) << position << " of " << duration;
    for (const double position : {double{NAN}, double{INFINITY}, double{-INFINITY}})
        EXPECT_EQ(scene.draw(draw, position).out, first) << position;
    for (const double position : {-0.01, -1e300})
        EXPECT_TRUE(traits.formulaBefore || scene.draw(draw, position).out == first);
    for (const double position : {1.01, 1e300})
        EXPECT_TRUE(traits.formulaBeyond || scene.draw(draw, position).out == last) << position;
}

TEST_P(EveryTransition, DrawsTheSameInAnyUnitOfTime) {
    Scene scene({101, 100, 404});
    const Bytes expected = scene.draw(draw, 0.3125).out;
    for (const int exponent : {-900, -40, -3, 5, 60, 900})
        EXPECT_EQ(scene.draw(draw, std::ldexp(0.3125, exponent), std::ldexp(1, exponent)).out, expected)
            << exponent;
}

TEST_P(EveryTransition, StaysWithinItsFramesAtAnyPosition) {
    constexpr double least = std::numeric_limits<double>::denorm_min();
    for (const Geometry& g : {Geometry{0, 3, 5}, {4, 0, 16}, {0, 0, 0}, {1, 1, 4}, {2, 7, 9}, {33, 11, 132}})
        for (const Guard guard : {Guard::before, Guard::after}) {
            Scene scene(g, guard);
            for (const double duration :
                 {1.0, 0.0, -1.0, least, 1e-300, 1e300, double{INFINITY}, double{NAN}})
                for (const double share :
                     {0.0, -least, -1e-17, 1 + 1e-15, -1.0, 1e300, -1e300, double{NAN}}) {
                    const Bytes drawn = scene.draw(draw, share * duration, duration).out;
                    ASSERT_EQ(scene.draw(draw, share * duration, duration).out, drawn);
                }
        }
}

TEST_P(EveryTransition, LeavesTheOutputAloneWhenAFrameIsBad) {
    const auto expectUntouched = [this](const Claim& out, const Claim& from, const Claim& to) {
        Scene scene({5, 4, 20});
        EXPECT_EQ(scene.drawUnder({out, from, to}, draw).out, scene.before);
    };
    for (const Claim& bad : {Claim{.handle = false}, {.bits = false}, {.pitch = 19}}) {
        expectUntouched(bad, {}, {});
        expectUntouched({}, bad, {});
        expectUntouched({}, {}, bad);
    }
    expectUntouched({}, {.height = 3}, {});
    expectUntouched({}, {}, {.height = 3});
    constexpr Claim limit{.width = 4, .height = 1 << 11, .pitch = 1 << 20};     // 2^31 bytes
    constexpr Claim wrapping{.width = 4, .height = 1 << 16, .pitch = 1 << 16};  // 2^32 bytes
    for (const Claim& bad : {limit,
                             wrapping,
                             {.bitCount = 24},
                             {.pitch = -20},
                             {.height = 0},
                             {.height = -4},
                             {.width = (1 << 30) + 5},
                             {.width = 1 << 29}})
        expectUntouched(bad, bad, bad);
}

TEST_P(EveryTransition, DrawsOnWhenTheFramesDifferButHoldEnough) {
    Scene scene({5, 4, 20});
    const Bytes expected = scene.draw(draw, 0.5).out;
    EXPECT_EQ(scene.drawUnder({{}, {.width = 4}, {.width = 9, .height = 5}}, draw).out, expected);
    EXPECT_EQ(scene.drawUnder({{}, {.height = 9}, {.height = 2, .pitch = 40}}, draw).out, expected);
    EXPECT_EQ(scene.drawUnder({{}, {.height = 2, .pitch = 40}, {.height = 9}}, draw).out, expected);
    for (const std::int32_t width : {0, INT_MIN}) {  // only padding, if anything
        scene.drawUnder({{.width = width}, {}, {}}, draw);
        EXPECT_EQ(scene.runs(0, 1, 80, 1).find_first_of("?d"), std::string::npos) << width;
    }
}

// Hosts draw in threads with small stacks. One that is too small for an effect, as with what sanitizers put
// there, ends the test program.
TEST_P(EveryTransition, NeedsAtMost64KiBOfStack) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(
                  &attributes, (64U << 10) + static_cast<std::size_t>(sysconf(_SC_THREAD_STACK_MIN))),
              0);
    for (const Geometry& g : {Geometry{320, 180, 1280}, {8203, 12, 32812}}) {
        Scene scene(g);
        std::function<void()> work = [&] {
            for (const double t : {0.1, 0.505, 0.9}) scene.draw(draw, t);
        };
        const auto run = [](void* data) -> void* {
            return (*static_cast<std::function<void()>*>(data))(), nullptr;
        };
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
        pthread_join(thread, nullptr);
    }
}
