#include "frames.h"

using namespace tests;

constexpr double handIsRound = 0.7477582334787556;  // the soft edge begins to be squeezed

// At one half the middle of the soft edge points straight down; the centre is (4, 4) of 8 x 8 and of 9 x 9.
TEST(Sweep, TurnsFromStraightUp) {
    for (const int size : {8, 9})
        for (const int y : {0, 4, size - 1}) {
            const std::string middle = y > 4 ? " 127" : " 255", behind = y > 4 ? " 127" : " 0";
            EXPECT_EQ(weights("TrSweepClockwise", size, size, 0.5, y, {0, 3, 4, 7}),
                      " 0 0" + middle + " 255");
            EXPECT_EQ(weights("TrSweepAntiClockwise", size, size, 0.5, y, {0, 3, 4, 7}),
                      " 255 255" + behind + " 0");
        }
}

// The middle of the soft edge points at 3 o'clock.
TEST(Sweep, TurnsTheCentreWithThreeOClock) {
    EXPECT_EQ(weights("TrSweepClockwise", 9, 9, 0.413371, 4, {3, 4, 5, 8}), " 0 127 127 127");
    EXPECT_EQ(weights("TrSweepAntiClockwise", 9, 9, 0.586628, 4, {3, 4, 5, 8}), " 255 127 127 127");
}

// The same a row below, where the edge is long: its weights are short of 127.5 by 1623.4 / columns from the
// centre.
TEST(Sweep, SoftensLongRows) {
    EXPECT_EQ(weights("TrSweepClockwise", 3000, 3, 0.41337156912901896, 2, {1540, 1800, 1964, 2200, 2900}),
              " 86 122 124 125 126");
}

// First 0.0785 are left for a soft edge twice as wide, and the pixel 20 rows up and one aside is 0.04996 from
// 12 o'clock.
TEST(Sweep, SqueezesTheSoftEdgeAndEndsOnTheColoursOfImgTo) {
    const auto top = [](const char* function, double t, int byte = 0) {
        return weights(function, 3, 41, t, 0, {0, 1, 2}, byte);
    };
    EXPECT_EQ(top("TrSweepClockwise", 0.7781355), " 162 255 255");
    EXPECT_EQ(top("TrSweepAntiClockwise", 0.7781355), " 255 255 162");
    EXPECT_EQ(top("TrSweepAntiClockwise", handIsRound - 1e-6), " 255 0 81");
    EXPECT_EQ(top("TrSweepAntiClockwise", handIsRound + 1e-6), " 255 255 81");
    for (const char* const function : {"TrSweepClockwise", "TrSweepAntiClockwise"})
        EXPECT_EQ(top(function, 1) + top(function, 1, 3), " 255 255 255 0 0 0") << function;
}

// Weights so near a whole number that the last decimals of the constants decide them: of the quarter, the
// half, three quarters, the way of the hand, the edge's width and what keeps divisors from 0.
TEST(Sweep, KeepsTheDecimalsOfItsConstants) {
    const auto at = [](double t, int x, int y) { return weights("TrSweepClockwise", 3, 3, t, y, {x}); };
    EXPECT_EQ(at(0.4133910167880867, 2, 1) + at(0.5866477776793717, 0, 1), " 128 128");
    EXPECT_EQ(at(0.6446868981500576, 0, 0) + at(0.4103433712647081, 2, 1), " 128 49");
    EXPECT_EQ(at(0.416166880499129, 2, 1) + at(0.5000159384915688, 1, 2), " 200 128");
}
