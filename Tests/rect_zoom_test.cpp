#include "plain_rule.h"

using namespace tests;

static void takeDarker(const std::uint8_t*, const std::uint8_t* to, std::uint8_t* out, int) {
    for (int i = 0; i < 3; ++i) out[i] = static_cast<std::uint8_t>(to[i] - (to[i] > 0));
}

// The one keeps imgFrom in a rectangle and shows imgTo darkened around it, the other shows imgTo in one.
template <bool in>
static Bytes rectZoom(const Scene& s, double position, double duration) {
    const auto [w, h, pitch] = s.geometry;
    const double size = in ? duration - position : position;
    const int halfWidth = rounded(size * w / duration) / 2, halfHeight = rounded(size * h / duration) / 2;
    const int cx = (in ? w + 1 : w) / 2, cy = (in ? h + 1 : h) / 2;
    const auto weight = [=](int x, int y) {
        return (std::abs(y - cy) < halfHeight && std::abs(x - cx) < halfWidth) != in ? 255 : untouched;
    };
    return blended(s, s.from, weight, in ? takeDarker : mix<3>);
}

TEST(RectZoom, FollowsItsRulePixelByPixel) {
    expectRule("TrRectZoomIn", rectZoom<true>);
    expectRule("TrRectZoomOut", rectZoom<false>, 1, 0, 3);
}

// What is replaced is neither frame's: byte 3 stays imgFrom's.
TEST(RectZoom, ShrinksToARoundedUpCentreAndGrowsFromTheMiddlePastTheEdges) {
    expectRows("TrRectZoomIn", {8, 6, 32}, 0, {{0, "8df"}, {1, "1df 7f"}, {5, "1df 7f"}});
    expectRows("TrRectZoomIn", {5, 5, 20}, 0, {{1, "5df"}, {2, "2df 3f"}, {4, "2df 3f"}});
    expectRows("TrRectZoomOut", {8, 6, 32}, 1, {{0, "8f"}, {1, "1f 7tf"}, {5, "1f 7tf"}});
    expectRows("TrRectZoomOut", {5, 5, 20}, 1, {{0, "5f"}, {1, "1f 3tf 1f"}, {3, "1f 3tf 1f"}, {4, "5f"}});
    expectRows("TrRectZoomOut", {20, 6, 80}, 1.1, {{0, "20f"}, {1, "20tf"}, {5, "20tf"}});  // 22 x 6.6
    for (const double t : {1.25, 1e300})
        expectRows("TrRectZoomOut", {20, 6, 80}, t, {{0, "20tf"}, {5, "20tf"}});
}
