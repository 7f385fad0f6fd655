#include "frames.h"

using namespace tests;

/// One byte along a row: 255 in byte 0 and 90 in byte 1 of both frames, 10 in byte 3 of imgFrom, 20 of imgTo.
static std::string drawn(std::int32_t width, double position, double duration, std::int32_t byte) {
    Scene scene({width, 2, 4 * width + 8}, Pixel{255, 90, 255, 10}, Pixel{255, 90, 255, 20});
    return scene.draw(transition("TrBlind"), position, duration).rowValues(1, byte);
}

// Black gaps of 6, 12, 18 and 24 columns end the slats on the left; of 25, 19, 13 and 7 start the others.
TEST(Blind, ShadesEightSlatsAndCutsThemByBlackGaps) {
    EXPECT_EQ(drawn(1920, 50, 100, 0),
              "720x255 54x229 6x0 48x204 12x0 42x178 18x0 36x153 49x0 35x153 19x0 41x178 13x0 47x204 7x0 "
              "53x229 720x255");
    EXPECT_EQ(drawn(1920, 50, 100, 1),  // 0.7 x 90 is just below 63
              "720x90 54x81 6x0 48x72 12x0 42x62 18x0 36x54 49x0 35x54 19x0 41x62 13x0 47x72 7x0 53x81 "
              "720x90");
    EXPECT_EQ(drawn(1920, 50, 100, 2), drawn(1920, 50, 100, 0));
    EXPECT_EQ(drawn(1920, 50, 100, 3), "961x20 959x10");
    // Slats of 3.97 columns: the gaps start at 2.7, 2.4, 2.1 and 1.8, and end at 1.2, 0.9, 0.6 and 0.3.
    EXPECT_EQ(drawn(127, 0.5, 1, 0),
              "51x255 3x229 3x204 3x178 2x153 3x0 1x153 1x0 2x178 1x0 2x204 1x0 2x229 52x255");
    EXPECT_EQ(drawn(63, 0.5, 1, 0), "27x255 1x229 1x204 1x178 1x153 4x0 28x255");
    EXPECT_EQ(drawn(31, 0.5, 1, 0) + ", " + drawn(31, 0.5, 1, 3), "31x255, 16x20 15x10");
}

TEST(Blind, EntersFromTheLeftAndLeavesOnTheRight) {
    EXPECT_EQ(drawn(64, 0.25, 1, 0), "1x0 1x229 62x255");  // from column -14.14, truncated
    EXPECT_EQ(drawn(31, 0, 1, 3), "1x20 30x10");
    EXPECT_EQ(drawn(64, 1, 1, 0) + ", " + drawn(64, 1, 1, 3), "64x255, 64x20");
    // The easing falls just short of 1: the last column is still in the first slat.
    EXPECT_EQ(drawn(64, 30, 30, 0) + ", " + drawn(64, 30, 30, 3), "63x255 1x229, 64x20");
}
