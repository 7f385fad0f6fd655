#include <gtest/gtest.h>

#include <cmath>

#include "transition_table.h"

TEST(SmoothStep, RampsLinearlyBetweenItsEdgesAndClampsBeyond) {
    auto* const ramp = tests::exported<float(float, float, float)>("_Z10smoothStepfff");
    constexpr float large = 1 << 24;  // to which single precision can add no odd number
    constexpr float cases[][4] = {
        {0, 1, 0.25F, 0.25F}, {0, 1, 2, 1},     {0, 1, -1, 0},        {2, 2, 3, 1},
        {2, 2, 1, 0},         {4, 8, 7, 0.75F}, {1, 0, 0.25F, 0.75F}, {-large, 3, 1, large / (large + 4)}};
    for (const auto& [e0, e1, x, result] : cases)
        EXPECT_EQ(ramp(e0, e1, x), result) << e0 << " " << e1 << " " << x;
    EXPECT_TRUE(std::isnan(ramp(2, 2, 2)));
    EXPECT_TRUE(std::isnan(ramp(0, 1, NAN)));
}
