// Pictures of the strips worked out by hand. One quarter is eased to 0.02326.
#include "frames.h"

using namespace tests;

// Bands of a thirty-second of the height or a sixty-fourth of the width, at least one; 0.15625 of 64 rows are
// open where the cubic alone eases. The cross has bands of ten.
TEST(Vantles, OpenBandsFromOppositeEdgesInTurn) {
    expectRows("TrRowVantle", {8, 100, 32}, 0.5, {{2, "4t 4f"}, {3, "4f 4t"}, {98, "4t 4f"}, {99, "4f 4t"}});
    expectRows("TrRowVantle", {8, 2, 35}, 0.5, {{0, "4t 4f |3f"}, {1, "4f 1ft 3t |3t"}});
    expectColumns("TrColVantle", {1000, 64, 4000}, 0.25,
                  {{14, "10t 54f"}, {15, "54f 10t"}, {990, "10t 54f"}});
    expectRows("TrColVantle", {4, 9, 24}, 0.5, {{3, "1t 1f 1t 1f |8k"}, {4, "4t |8k"}});  // 4.5
    expectRows("TrCrossVantle", {50, 30, 208}, 0.5, {{14, "10t 10f 30t |8f"}, {19, "10f 10t 5f 25t |8f"}});
}

// Of 90 pixels, and of 108: a quarter of these is 27, opened by two.
TEST(Shutters, OpenSlatsThatAllWidenAtTheSameTime) {
    expectColumns("TrVerShutter", {1920, 1, 7688}, 0.5, {{44, "1tf"}, {45, "1f"}, {89, "1f"}, {90, "1tf"}});
    expectRows("TrHorShutter", {2, 1080, 13}, 0.5, {{44, "2tf |5f"}, {45, "2f |5f"}, {90, "2tf |5f"}});
    expectRows("TrCrossShutter1", {117, 1080, 468}, 0.25, {{25, "117t"}, {26, "26t 82f 9t"}});
    expectRows("TrCrossShutter2", {117, 1080, 468}, 0.25, {{25, "26t 82f 9t"}, {26, "117f"}});
}

// Black gaps of 6, 12, 18 and 24 columns end the slats on the left; of 25, 19, 13 and 7 start the others.
TEST(Blind, ShadesEightSlatsAndCutsThemByBlackGaps) {
    Scene scene({1920, 1, 7680}, Pixel{255, 90, 255, 10}, Pixel{255, 90, 255, 20});
    scene.draw(transition("TrBlind"), 50, 100);
    EXPECT_EQ(scene.rowValues(0, 1),  // 0.7 x 90 is just below 63
              "720x90 54x81 6x0 48x72 12x0 42x62 18x0 36x54 49x0 35x54 19x0 41x62 13x0 47x72 7x0 53x81 "
              "720x90");
    EXPECT_EQ(scene.rowValues(0, 3), "961x20 959x10");
}

// 150 and 151 lines have bands of 3 and 4; linearly 8 of 10 rows are left, of 11 columns 8.
TEST(SplitsAndMerges, DifferInTheirMiddleAndInHowTheBandIsRounded) {
    expectColumns("TrRowSplit", {2, 150, 8}, 0.25, {{1, "74f 3tf 73f"}});
    expectColumns("TrRowSplit", {2, 64, 8}, 0.25, {{1, "64f"}});  // 1.49
    expectRows("TrColSplit", {150, 2, 600}, 0.25, {{1, "74f 3t 73f"}});
    expectColumns("TrRowMerge", {2, 151, 8}, 0.75, {{1, "73t 4f 74t"}});
    expectRows("TrColMerge", {151, 2, 604}, 0.75, {{1, "74t 3f 74t"}});
    expectRows("TrCrossSplit", {151, 100, 612}, 0.25, {{48, "73f 4t 74f |8f"}, {49, "151t |8t"}});
    expectColumns("TrCrossMerge", {11, 10, 44}, 0.25, {{2, "2tf 7f 1tf"}, {3, "10f"}});
}

// Byte 0 shows the weight of imgFrom, byte 1 that of imgTo.
TEST(SecondSplits, RampFromTheCentreOutward) {
    const auto drawn = [](const char* function, const Geometry& g, double t) {
        Scene scene(g, Pixel{255, 0, 37, 90}, Pixel{0, 255, 200, 91});
        return std::move(scene.draw(transition(function), t));
    };
    const Scene row = drawn("TrRowSplit2", {2, 65, 8}, 0.25),
                column = drawn("TrColSplit2", {200, 2, 800}, 0.25);
    const Scene cross = drawn("TrCrossSplit2", {10, 6, 40}, 0.25);
    EXPECT_EQ(row.columnValues(0, 0), "30x255 1x240 1x248 1x255 1x248 1x240 30x255");  // 1.51 rows
    EXPECT_EQ(column.rowValues(1, 0),
              "96x255 1x243 1x246 1x248 1x251 1x254 1x252 1x249 1x247 96x255");  // 4.65
    EXPECT_EQ(cross.rowValues(1, 1), "3x0 1x136 1x110 1x85 1x110 1x136 2x0");    // 2.5 columns
    EXPECT_EQ(cross.rowValues(2, 1), "1x170 1x144 1x119 1x93 1x68 1x42 1x68 1x93 1x119 1x144");  // 1.5 rows
}

// Of 280 pixels 140 are behind, of 480 240, of 180 135 or all but 4; a weight shows as one less.
TEST(Skews, SoftenEightyPixelsBesideTheirDiagonal) {
    EXPECT_EQ(weights("TrSkewRightSplit", 200, 1, 0.5, 0, {0, 60, 61, 100, 139, 140}),
              " 254 254 250 126 2 0");
    EXPECT_EQ(weights("TrSkewLeftSplit", 400, 1, 0.5, 0, {319, 318, 240, 239}, 3), " 254 250 2 0");
    EXPECT_EQ(weights("TrSkewLeftSplit", 100, 1, 0.75, 0, {44, 43, 0}), " 254 248 4");
    EXPECT_EQ(weights("TrSkewLeftMerge", 200, 1, 0.5, 0, {59, 61, 100, 139, 140}), " 0 2 126 250 254");
    EXPECT_EQ(weights("TrSkewRightMerge", 100, 1, 0.75, 0, {99, 98, 97, 96, 95}), " 0 62 126 190 254");
    EXPECT_EQ(weights("TrSkewRightSplit", 26, 22, 0.2, 11, {11, 12, 13}),
              " 0 2 0");  // 13 in double precision
}

// Bands of 10 in 100 rows fall 550 together, 275 at one half, where three of 100, 90 and 80 have ended.
TEST(DepositUp, PilesUpBandsThatFallOneAfterAnother) {
    const std::pair<double, const char*> cases[] = {
        {0.5, "5tf 65f 30tf"}, {0.497, "70f 30tf"}, {0.4976, "1tf 69f 30tf"}};
    for (const auto& [t, runs] : cases) expectColumns("TrDepositUp", {2, 100, 8}, t, {{1, runs}});
    expectColumns("TrDepositUp", {2, 96, 8}, 0.5, {{1, "63f 10tf 3f 20tf"}});  // 73 of the third fall's 76
}
