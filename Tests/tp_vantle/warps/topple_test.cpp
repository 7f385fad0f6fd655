#include "frames.h"

using namespace tests;

/// Expects the rows of a picture, from the top, to be these rows of imgTo (t) or imgFrom (f).
static void expectFrom(const Geometry& g, double t, std::initializer_list<std::pair<char, int>> sources) {
    Scene scene(g);
    scene.draw(transition("TrTopple"), t);
    const auto pixels = [&](const Bytes& bytes, int y) {
        const auto start = bytes.begin() + (g.height - 1 - y) * g.pitch;
        return Bytes(start, start + 4 * g.width);
    };
    int y = 0;
    for (const auto& [frame, sourceRow] : sources) {
        EXPECT_EQ(pixels(scene.out, y), pixels(frame == 't' ? scene.to : scene.from, sourceRow)) << y;
        ++y;
    }
}

TEST(Topple, SlidesOneFrameInAndSquashesTheOtherOntoItsBottomRow) {
    expectFrom(
        {3, 10, 17}, 0.5,
        {{'t', 5}, {'t', 6}, {'t', 7}, {'t', 8}, {'t', 9}, {'f', 1}, {'f', 3}, {'f', 5}, {'f', 7}, {'f', 9}});
    expectFrom({3, 3, 12}, 0.5, {{'t', 2}, {'f', 1}, {'f', 2}});  // 1.5 rows have slid in
    expectFrom({3, 3, 12}, 0.8, {{'t', 1}, {'t', 2}, {'f', 2}});
    expectFrom({3, 1, 12}, 0.8, {{'f', 0}});
}
