#include "frames.h"

using namespace tests;

// Half of 800 and 100.5 more is 500.5: at one half the radius is 250. imgTo gains 2.55 a pixel inward.
TEST(RoundZoom, SoftensAHundredPixelsInsideTheDisc) {
    const auto columns = {320, 170, 169, 520, 569, 570, 571};
    EXPECT_EQ(weights("TrRoundZoomIn", 640, 480, 0.5, 240, columns), " 255 255 252 127 2 0 0");
    EXPECT_EQ(weights("TrRoundZoomIn", 640, 480, 0.5, 240, columns, 3), " 255 255 252 127 2 0 0");
    EXPECT_EQ(weights("TrRoundZoomOut", 640, 480, 0.5, 240, columns), " 0 0 3 128 253 255 255");
    EXPECT_EQ(weights("TrRoundZoomOut", 640, 480, 0.5, 240, {320, 520, 571}, 3), " 255 255 255");
}

// 9 x 9: half the diagonal is 6.36, the radius 106, the top left corner 7 from the centre (5, 5).
TEST(RoundZoom, FallsShortByOneStepInTheCornerOfAnOddFrame) {
    expectRows("TrRoundZoomIn", {9, 9, 40}, 1, {{0, "1d 8t |4f"}, {1, "9t |4f"}, {8, "9t |4f"}});
    EXPECT_EQ(weights("TrRoundZoomIn", 9, 9, 1, 0, {0, 1, 8}, 3), " 252 255 255");
    EXPECT_EQ(weights("TrRoundZoomOut", 9, 9, 0, 0, {0, 1, 8}), " 3 0 0");
}

// D = 10: the limit is 5 on both sides of one half, a step from the centre (4, 3) weighs 51.
TEST(RoundZoom, BlendsAlongTheRadiusInTheDiscThatReturns) {
    const auto columns = {0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.5, 3, columns), " 204 153 102 51 0 51 102 153");
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.5, 0, columns), " 255 204 204 153 153 153 204 204");
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.49, 0, columns), " 0 204 204 153 153 153 204 204");
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.49, 0, {0, 3}, 3), " 77 77");
}
