#include <latch>
#include <thread>

#include "frame/pixels/processor.h"
#include "frames.h"

using namespace tests;

TEST(EachTransition, DrawsTheSameInSeveralThreadsAtOnce) {
    for (const Traits& traits : transitionTable) {
        TransFunc* const draw = transition(traits.function);
        // The thread sanitizer finds by order what else only chance does.
        constexpr int frames = VANTLE_SANITIZED ? 20 : 500;
        // The dissolve's calls must not overlap: they share the order of its pixels.
        const std::int32_t several = traits.function == std::string("TrFadeNew") ? 1 : 4;
        std::latch start(several);
        std::vector<int> wrong(4);
        std::vector<std::jthread> threads;
        for (std::int32_t i = 0; i < several; ++i)
            threads.emplace_back([draw, i, &start, &count = wrong[static_cast<std::size_t>(i)]] {
                Scene scene({90 + 7 * i, 90 - 9 * i, 360 + 28 * i});
                const auto at = param(0.2 + 0.15 * i, 1);
                const Bytes expected = scene.draw(draw, at.get()).out;
                start.arrive_and_wait();
                for (int frame = 0; frame < frames; ++frame)
                    count += scene.draw(draw, at.get()).out != expected;
            });
        threads.clear();
        EXPECT_EQ(wrong, std::vector<int>(4)) << traits.function << " drawn differently, thread by thread";
    }
}
