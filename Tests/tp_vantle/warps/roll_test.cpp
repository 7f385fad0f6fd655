#include "frames.h"

using namespace tests;

// At one half the edge has turned by 0.864, 0.0785 or half its softness past the diagonal; 20 columns along
// the bottom row are 0.05 short of the side.
TEST(Roll, TurnsAboutTheBottomLeftCorner) {
    EXPECT_EQ(weights("TrRollClockwise", 4, 3, 0.5, 2, {0, 1, 2}), " 255 127 0");
    EXPECT_EQ(weights("TrRollClockwise", 4, 3, 0.5, 2, {0, 1, 2}, 3), " 255 127 0");
    EXPECT_EQ(weights("TrRollAntiClockwise", 4, 3, 0.5, 2, {0, 1, 2}), " 0 127 255");
    EXPECT_EQ(weights("TrRollAntiClockwise", 4, 3, 0.5, 1, {1, 2, 3}), " 0 127 255");
    EXPECT_EQ(weights("TrRollAntiClockwise", 4, 3, 0.5, 2, {0, 1, 2}, 3), " 0 0 0");
    EXPECT_EQ(weights("TrRollClockwise", 101, 1, 0.8, 0, {0, 50, 100}), " 255 255 214");
}

// Past the end the angle falls back, and before the start it has come from beyond the end.
TEST(Roll, KeepsTheLeftColumnForTheVeryEndAndItsFormulaOutside) {
    for (const auto& [t, clockwise, anti] : {std::tuple{0.2, " 19", " 0"},
                                             {0.98, " 255", " 0"},
                                             {1.0, " 255", " 255"},
                                             {1.2, " 255", " 0"},
                                             {1.6, " 255", " 0"},
                                             {-0.5, " 255", " 255"},
                                             {-0.1, " 0", " 0"}}) {
        EXPECT_EQ(weights("TrRollClockwise", 1, 10, t, 0, {0}), clockwise) << t;
        EXPECT_EQ(weights("TrRollAntiClockwise", 1, 10, t, 0, {0}), anti) << t;
    }
}
