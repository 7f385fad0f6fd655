#include "plain_rule.h"

using namespace tests;

// The squares are of imgTo in the one, of imgFrom in the other. Frames below ten rows have cells of two.
template <bool in>
static Bytes gridZoom(const Scene& s, double position, double duration) {
    const double t = position / duration;
    if (in ? t < 0.001 : t > 0.999) return in ? s.from : s.to;
    const int h = s.geometry.height, tenth = static_cast<int>(h * 0.1), cell = std::max(tenth + tenth % 2, 2);
    const int side = static_cast<int>(in ? t * cell : cell * ((duration - position) / duration));
    const int low = (cell - (in ? side + side % 2 : side - side % 2)) / 2;
    const auto within = [=](int phase) { return phase >= low && phase <= cell - low; };
    return blended(s, s.from, [=](int x, int y) {
        return (within(x % cell) && within((h - 1 - y) % cell)) == in ? 255 : untouched;
    });
}

TEST(GridZoom, FollowsItsRulePixelByPixel) {
    expectRule("TrGridZoomIn", gridZoom<true>);
    expectRule("TrGridZoomOut", gridZoom<false>);
}

// What is replaced is neither frame's: byte 3 stays imgFrom's.
TEST(GridZoom, CountsItsCellsFromTheBottomLeft) {
    expectRows("TrGridZoomIn", {64, 480, 256}, 0.5, {{443, "12f 25tf 23f 4tf"}, {467, "12f 25tf 23f 4tf"}});
    expectRows("TrGridZoomIn", {30, 250, 120}, 0.5, {{0, "6f 15tf 9f"}, {243, "6f 15tf 9f"}, {244, "30f"}});
    expectRows("TrGridZoomOut", {30, 250, 120}, 0.5,
               {{0, "7tf 13f 10tf"}, {242, "7tf 13f 10tf"}, {243, "30tf"}});
    // A fifth of ten is two, and no bit less.
    EXPECT_EQ(Scene({20, 100, 80}).draw(transition("TrGridZoomOut"), 4, 5).row(95), "4tf 3f 7tf 3f 3tf");
    for (const std::int32_t h : {9, 10, 29})
        expectRows("TrGridZoomIn", {5, h, 20}, 0.49,
                   {{h - 3, "5f"}, {h - 2, "1f 1tf 1f 1tf 1f"}, {h - 1, "5f"}});
}

TEST(GridZoom, StartsAndEndsOnOnePixelOfACell) {
    expectRows("TrGridZoomIn", {5, 10, 20}, 0.000999, {{8, "5f"}});
    expectRows("TrGridZoomIn", {5, 10, 20}, 0.001, {{7, "5f"}, {8, "1f 1tf 1f 1tf 1f"}});
    expectRows("TrGridZoomOut", {5, 10, 20}, 0.999, {{7, "5tf"}, {8, "1tf 1f 1tf 1f 1tf"}});
    expectRows("TrGridZoomOut", {5, 10, 20}, 0.9991, {{7, "5t"}, {8, "5t"}});
}
