#include "plain_rule.h"

using namespace tests;

template <bool clockwise>
static Bytes roll(const Scene& s, double position, double duration) {
    constexpr double travel = 1.727875959425, quarter = 1.57079632675, soft = 0.157079632675;
    const double turned = travel * (eased(position, duration) / duration), tangent = std::tan(turned);
    const auto weight = [&](int x, int y) {
        const double across = x, up = s.geometry.height - y;
        const double ratio = clockwise ? across / up : up / across, angle = std::atan(ratio);
        if (turned > quarter) {
            if (turned >= travel || angle <= turned - soft) return 255;
            return std::max(truncated((quarter - angle) * 255 / (travel - turned)), 0);
        }
        if (!(tangent > ratio)) return untouched;
        const double behind = std::atan(tangent) - angle;
        return behind <= soft ? truncated(behind * 255 / soft) : 255;
    };
    return blended(s, s.from, weight, clockwise ? mix<4> : mix<3>);
}

constexpr double edgeHasLeft = 0.6730827249126458;

TEST(Roll, FollowsItsRulePixelByPixel) {
    expectRule("TrRollClockwise", roll<true>, edgeHasLeft);
    expectRule("TrRollAntiClockwise", roll<false>, edgeHasLeft);
    expectRule("TrRollClockwise", roll<true>, 0.9, -3, 3);
    expectRule("TrRollAntiClockwise", roll<false>, 0.9, -3, 3);
}

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
