#include "frames.h"

using namespace tests;

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
