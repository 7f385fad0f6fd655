// Pictures of the warps worked out by hand.
#include "frames.h"

using namespace tests;

// At one half the edge has turned by 0.864, 0.0785 or half its softness past the diagonal. Past the end the
// angle falls back, and before the start it has come from beyond the end.
TEST(Roll, TurnsAboutTheBottomLeftCorner) {
    EXPECT_EQ(weights("TrRollClockwise", 4, 3, 0.5, 2, {0, 1, 2}, 3), " 255 127 0");
    EXPECT_EQ(weights("TrRollAntiClockwise", 4, 3, 0.5, 1, {1, 2, 3}), " 0 127 255");
    for (const auto& [t, clockwise, anti] : {std::tuple{0.2, " 19", " 0"},
                                             {0.98, " 255", " 0"},
                                             {1.0, " 255", " 255"},
                                             {1.6, " 255", " 0"},
                                             {-0.5, " 255", " 255"}}) {
        EXPECT_EQ(weights("TrRollClockwise", 1, 10, t, 0, {0}), clockwise) << t;
        EXPECT_EQ(weights("TrRollAntiClockwise", 1, 10, t, 0, {0}), anti) << t;
    }
}

/// Frames whose pixels tell their column in byte 0 and their row in byte 1, those of imgTo from 100 on.
static Scene told(const char* function, int w, int h, double t) {
    const auto content = [=](int first) {
        Bytes bytes;
        for (int i = 0; i < w * h; ++i)
            for (const int value : {i % w, h - 1 - i / w, 0, 0})
                bytes.push_back(static_cast<std::uint8_t>(first + value));
        return bytes;
    };
    Scene scene({w, h, 4 * w}, content(0), content(100), Guard::after);
    return std::move(scene.draw(transition(function), t));
}

TEST(Topple, SlidesOneFrameInAndSquashesTheOtherOntoItsBottomRow) {
    EXPECT_EQ(told("TrTopple", 3, 10, 0.5).columnValues(2, 1),
              "1x105 1x106 1x107 1x108 1x109 1x1 1x3 1x5 1x7 1x9");
    EXPECT_EQ(told("TrTopple", 3, 3, 0.5).columnValues(0, 1), "1x102 1x1 1x2");  // 1.5 rows have slid in
}

// Eased to 0.26: four rows and five columns; at one half eight and ten.
TEST(RowCosines, AdvanceAlongHalfACosineInBandsOfFour) {
    expectRows("TrRowCosVantle", {10, 8, 43}, 0.415,
               {{0, "5tf 5f |3f"}, {1, "4tf 6f |3f"}, {2, "2tf 8f |3f"}, {4, "10f |3f"}});
    expectRows("TrRowCosVantle", {10, 8, 43}, 0.5, {{0, "10tf |3f"}, {3, "6tf 4f |3f"}, {4, "5f 5tf |3f"}});
    expectRows("TrRowCosSlide", {10, 8, 43}, 0.5, {{0, "10t |3t"}, {7, "10f |3f"}});  // 10 is the whole row
    const Scene slide = told("TrRowCosSlide", 10, 8, 0.5);
    EXPECT_EQ(slide.rowValues(3, 0), "1x104 1x105 1x106 1x107 1x108 1x109 1x6 1x7 1x8 1x9");
    EXPECT_EQ(slide.rowValues(4, 0), "1x0 1x1 1x2 1x3 1x4 1x100 1x101 1x102 1x103 1x104");
}

TEST(Twirl, IsBlackAtTheMiddleAndWithoutTheFirstRowAndColumnAtTheStart) {
    EXPECT_EQ(weights("TrTwrl", 4, 3, 7.5, 0, {0, 3}, 0, 15) + weights("TrTwrl", 4, 3, 7.5, 0, {0, 3}, 3, 15),
              " 0 0 77 77");
    Scene scene({4, 3, 16}, Pixel{1, 2, 3, 4}, Pixel{5, 6, 7, 8});
    scene.draw(transition("TrTwrl"), 0.0);
    EXPECT_EQ(scene.rowValues(0, 0) + ", " + scene.rowValues(1, 1), "4x0, 1x0 3x2");
    for (const double same : {0.0, -1.0})
        EXPECT_EQ(scene.draw(transition("TrTwrl"), same, same).out, scene.to);
}

// After a quarter of a turn what was on the right is at the bottom, of 61 pixels.
TEST(Twirl, TurnsClockwiseAndShrinks) {
    const Scene scene = told("TrTwrl", 80, 80, 0.125);
    EXPECT_LT(scene.value(38, 12, 0), 10);
    EXPECT_GT(scene.value(38, 68, 0), 70);
    EXPECT_EQ(scene.value(38, 72, 0), 0);
}
