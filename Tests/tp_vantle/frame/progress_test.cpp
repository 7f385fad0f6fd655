// The eased size that most transitions draw with, seen as the width that TrRowVantle opens in its top row.
#include "frames.h"

using namespace tests;

static std::string openedRow(std::int32_t width, double position, double duration) {
    return Scene({width, 1, 4 * width}).draw(transition("TrRowVantle"), position, duration).row(0);
}

// By hand: a quarter is eased to 1/4 - 1/(2 pi) = 0.090845, then to 0.023259; three quarters mirror it.
TEST(Progress, IsEasedBySineThenByCubicAndRounded) {
    EXPECT_EQ(openedRow(1920, 0.25, 1), "45t 1875f");
    EXPECT_EQ(openedRow(1920, 50, 100), "960t 960f");
    EXPECT_EQ(openedRow(1920, 18, 24), "1875t 45f");
    EXPECT_EQ(openedRow(2386, 0.25, 1), "55t 2331f") << "55.496";
    EXPECT_EQ(openedRow(2387, 0.25, 1), "56t 2331f") << "55.519";
}
