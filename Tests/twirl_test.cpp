#include "plain_rule.h"

using namespace tests;

static Bytes twirl(const Scene& s, double position, double duration) {
    const auto [w, h, pitch] = s.geometry;
    const double half = duration * 0.5;
    if (position == duration) return s.to;
    const bool first = duration > position + position, middle = duration == position + position;
    const double passed = first ? position : position - half, grown = first ? half - position : passed;
    const double angle = (passed / half + passed / half) * 3.141592653589793;
    const auto k = static_cast<float>(grown * 0.949999988079071 / half + 0.05000000074505806);
    const int shownWidth = static_cast<int>(static_cast<float>(w) * k), left = (w - shownWidth) >> 1;
    const int shownHeight = static_cast<int>(static_cast<float>(h) * k), top = (h - shownHeight) >> 1;
    const double c = std::cos(angle), sine = std::sin(angle);
    Bytes out = s.before;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double dx = x - (w >> 1), dy = y - (h >> 1);
            const int a = truncated(c * dy), b = truncated(sine * dy + (w >> 1));
            const int sx = std::clamp(truncated(c * dx + b), 0, w - 1);
            const int sy = std::clamp(truncated(a - sine * dx + (h >> 1)), 0, h - 1);
            std::uint8_t* const pixel = &out[offsetOf(s.geometry, x, y)];
            if (!middle && sx > left && sx < left + shownWidth && sy > top && sy < top + shownHeight) {
                const int u = static_cast<int>(static_cast<float>(sx - left) / k);
                const int v = static_cast<int>(static_cast<float>(sy - top) / k);
                std::memcpy(pixel, &(first ? s.from : s.to)[offsetOf(s.geometry, u, v)], 4);
            } else {
                std::memset(pixel, 0, 3);
            }
        }
    return out;
}

TEST(Twirl, FollowsItsRulePixelByPixel) {
    expectRule("TrTwrl", twirl);
    expectRule("TrTwrl", twirl, 0.01);
}

TEST(Twirl, IsBlackAtTheMiddleAndWithoutTheFirstRowAndColumnAtTheStart) {
    Scene scene({4, 3, 18}, Pixel{1, 2, 3, 4}, Pixel{5, 6, 7, 8});
    scene.before.assign(scene.before.size(), 77);
    const auto row = [&](int y, int byte) { return scene.rowValues(y, byte); };
    scene.draw(transition("TrTwrl"), 7.5, 15);
    EXPECT_EQ(row(0, 2) + ", " + row(2, 3), "4x0, 4x77");
    scene.draw(transition("TrTwrl"), 0.0);
    EXPECT_EQ(row(0, 0) + ", " + row(0, 3) + ", " + row(1, 1) + ", " + row(2, 3),
              "4x0, 4x77, 1x0 3x2, 1x77 3x4");
    for (const double same : {0.0, -1.0})
        EXPECT_EQ(scene.draw(transition("TrTwrl"), same, same).out, scene.to);
}

// After a quarter of a turn the right half is at the bottom, of 61 pixels; so is the incoming frame's.
TEST(Twirl, TurnsClockwiseAndShrinks) {
    constexpr Geometry g{80, 80, 320};
    Bytes halves(25600, 100);
    for (std::size_t i = 0; i < halves.size(); ++i) halves[i] = i % 320 < 160 ? 100 : 200;
    Scene first(g, halves, Bytes(25600), Guard::after), second(g, Bytes(25600), halves, Guard::after);
    first.draw(transition("TrTwrl"), 0.125);
    second.draw(transition("TrTwrl"), 0.875);  // three quarters: the other way up
    const auto column = [](const Scene& scene, std::initializer_list<int> rows) {
        std::vector<int> values;
        for (const int y : rows) values.push_back(scene.value(38, y, 1));
        return values;
    };
    EXPECT_EQ(column(first, {8, 12, 36, 44, 68, 72}), (std::vector{0, 100, 100, 200, 200, 0}));
    EXPECT_EQ(column(second, {8, 12, 36, 44, 68, 72}), (std::vector{0, 200, 200, 100, 100, 0}));
}
