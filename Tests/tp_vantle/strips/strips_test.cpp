// Pictures of the strips worked out by hand. One quarter is eased to 0.02326.
#include "frames.h"

using namespace tests;

// Bands of a thirty-second of the height; 0.15625 of 64 rows are open where the cubic alone eases. The cross
// has bands of ten.
TEST(Vantles, OpenBandsFromOppositeEdgesInTurn) {
    expectRows("TrRowVantle", {8, 100, 35}, 0.5, {{2, "4t 4f |3f"}, {3, "4f 1ft 3t |3t"}});
    expectRows("TrColVantle", {2, 64, 8}, 0.25, {{9, "1t 1f"}, {10, "2f"}, {53, "2f"}, {54, "1f 1t"}});
    expectRows("TrCrossVantle", {50, 30, 208}, 0.5, {{14, "10t 10f 30t |8f"}, {19, "10f 10t 5f 25t |8f"}});
}

// Of 90 pixels, and of 108: a quarter of these is 27, opened by two.
TEST(Shutters, OpenSlatsThatAllWidenAtTheSameTime) {
    expectRows("TrHorShutter", {2, 1080, 13}, 0.5, {{44, "2tf |5f"}, {45, "2f |5f"}, {90, "2tf |5f"}});
    expectRows("TrCrossShutter1", {117, 1080, 468}, 0.25, {{25, "117t"}, {26, "26t 82f 9t"}});
}

// Black gaps of 6, 12, 18 and 24 columns end the slats on the left; of 25, 19, 13 and 7 start the others.
TEST(Blind, ShadesEightSlatsAndCutsThemByBlackGaps) {
    Scene scene({1920, 1, 7680}, Pixel{255, 90, 255, 10}, Pixel{255, 90, 255, 20});
    scene.draw(transition("TrBlind"), 50, 100);
    EXPECT_EQ(scene.rowValues(0, 1),  // 0.7 x 90 is just below 63
              "720x90 54x81 6x0 48x72 12x0 42x62 18x0 36x54 49x0 35x54 19x0 41x62 13x0 47x72 7x0 53x81 "
              "720x90");
}

// 150 and 151 lines have bands of 3 and 4; linearly 8 of 10 rows are left, of 11 columns 8.
TEST(SplitsAndMerges, DifferInTheirMiddleAndInHowTheBandIsRounded) {
    expectRows("TrColSplit", {150, 2, 600}, 0.25, {{1, "74f 3t 73f"}});
    expectRows("TrColMerge", {151, 2, 604}, 0.75, {{1, "74t 3f 74t"}});
    expectRows("TrCrossSplit", {151, 100, 612}, 0.25, {{48, "73f 4t 74f |8f"}, {49, "151t |8t"}});
    expectRows("TrCrossMerge", {11, 10, 44}, 0.25, {{1, "3tf 7f 1tf"}, {2, "11f"}});
}

// Bands of 4.65 columns and of 2.5 on either side; 510 by 96 of 200 is 244, and the cross has the mean of 102
// or 51 and of 170.
TEST(SecondSplits, RampFromTheCentreOutward) {
    EXPECT_EQ(weights("TrColSplit2", 200, 2, 0.25, 1, {95, 96, 99, 100, 103, 104}), " 0 10 2 0 6 0");
    EXPECT_EQ(weights("TrCrossSplit2", 10, 6, 0.25, 1, {2, 3, 4, 5, 6, 8}), " 0 136 110 85 110 0");
}

// Of 280 pixels 140 are behind, of 480 240; a weight shows as one less.
TEST(Skews, SoftenEightyPixelsBesideTheirDiagonal) {
    EXPECT_EQ(weights("TrSkewRightSplit", 200, 1, 0.5, 0, {60, 61, 100, 139, 140}), " 254 250 126 2 0");
    EXPECT_EQ(weights("TrSkewLeftSplit", 400, 1, 0.5, 0, {319, 318, 240, 239}, 3), " 254 250 2 0");
    EXPECT_EQ(weights("TrSkewLeftMerge", 200, 1, 0.5, 0, {59, 61, 100, 139, 140}), " 0 2 126 250 254");
}

// Bands of 10 in 100 rows fall 550 together, 275 at one half, where three of 100, 90 and 80 have ended.
TEST(DepositUp, PilesUpBandsThatFallOneAfterAnother) {
    expectRows("TrDepositUp", {2, 100, 8}, 0.5, {{4, "2tf"}, {5, "2f"}, {69, "2f"}, {70, "2tf"}});
}
