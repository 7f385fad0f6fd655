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
