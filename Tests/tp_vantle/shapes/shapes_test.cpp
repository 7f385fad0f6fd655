// Pictures of the shapes worked out by hand.
#include <cmath>

#include "frames.h"

using namespace tests;

// What is replaced is neither frame's: byte 3 stays imgFrom's.
TEST(RectZoom, ShrinksToARoundedUpCentreAndGrowsFromTheMiddlePastTheEdges) {
    expectRows("TrRectZoomIn", {5, 5, 20}, 0, {{1, "5df"}, {2, "2df 3f"}, {4, "2df 3f"}});
    expectRows("TrRectZoomOut", {5, 5, 20}, 1, {{0, "5f"}, {1, "1f 3tf 1f"}, {3, "1f 3tf 1f"}, {4, "5f"}});
    for (const double t : {1.25, 1e300})
        expectRows("TrRectZoomOut", {20, 6, 80}, t, {{0, "20tf"}, {5, "20tf"}});
}

// Half of 800 and 100.5 more is 500.5: at one half the radius is 250. imgTo gains 2.55 a pixel inward. In the
// disc that returns the limit is 5 on both sides of one half, a step from the centre (4, 3) weighs 51.
TEST(RoundZoom, SoftensAHundredPixelsInsideTheDiscOrAllOfIt) {
    const auto columns = {320, 170, 169, 520, 569, 570, 571};
    EXPECT_EQ(weights("TrRoundZoomIn", 640, 480, 0.5, 240, columns, 3), " 255 255 252 127 2 0 0");
    EXPECT_EQ(weights("TrRoundZoomOut", 640, 480, 0.5, 240, columns), " 0 0 3 128 253 255 255");
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.5, 0, {0, 1, 3, 7}), " 255 204 153 204");
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.49, 0, {0, 1, 3, 7}), " 0 204 153 204");
}

// From column 4 outward: 3, 2.25, 1.5, 0.75 and 0 rows up and down.
TEST(DiamondZoom, PeaksRightOfTheMiddle) {
    expectRows("TrDiamondZoomOut", {8, 6, 40}, 0.5,
               {{0, "4f 1t 3f |8f"}, {1, "2f 5t 1f |8f"}, {3, "1f 7t |8f"}});
    expectColumns("TrDiamondZoomIn", {5, 5, 24}, 0.4, {{0, "1t 2f 2t"}, {4, "5f"}});  // 3.88 columns
}

TEST(GridZoom, CountsItsCellsFromTheBottomLeft) {
    expectRows("TrGridZoomIn", {64, 480, 256}, 0.5, {{443, "12f 25tf 23f 4tf"}, {467, "12f 25tf 23f 4tf"}});
    expectRows("TrGridZoomOut", {30, 250, 120}, 0.5,
               {{0, "7tf 13f 10tf"}, {242, "7tf 13f 10tf"}, {243, "30tf"}});
    // A fifth of ten is two, and no bit less.
    EXPECT_EQ(Scene({20, 100, 80}).draw(transition("TrGridZoomOut"), 4, 5).row(95), "4tf 3f 7tf 3f 3tf");
}

// The radius is 200, rings end at the depths 25, 48, 70 ... 198 and 200; the odd ones weigh imgFrom by half.
// At 0.006 it is 2 and the first ring empty: the rim lies in the second, the centre in none.
TEST(CirqueZoom, WeighsTheRingsInTurn) {
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.5, 240,
                      {521, 520, 519, 496, 144, 495, 473, 472, 451, 321, 320}),
              " 0 0 10 244 244 189 131 174 251 253 128");
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.006, 240, {323, 322, 320}), " 0 255 2");
}

// At one half the middle of the soft edge points straight down. Then 0.0785 are left for a soft edge twice as
// wide, and the pixel 20 rows up and one aside is 0.04996 from 12 o'clock.
TEST(Sweep, TurnsFromStraightUpAndSqueezesTheSoftEdgeInTheEnd) {
    EXPECT_EQ(weights("TrSweepClockwise", 9, 9, 0.5, 8, {0, 3, 4, 7}), " 0 0 127 255");
    EXPECT_EQ(weights("TrSweepAntiClockwise", 9, 9, 0.5, 4, {0, 3, 4, 7}), " 255 255 0 0");
    EXPECT_EQ(weights("TrSweepClockwise", 3, 41, 0.7781355, 0, {0, 1, 2}), " 162 255 255");
    EXPECT_EQ(weights("TrSweepAntiClockwise", 3, 41, 0.7781355, 0, {0, 1, 2}), " 255 255 162");
}

// Opened by 0.01 at 0.1973165: one row off the centre is 100 columns away. By 0.555, a slope of 0.62, at
// 0.45.
TEST(Pinwheel, TurnsItsBladesAnticlockwiseFromACrossOfOnePixel) {
    expectRows("TrWind", {301, 5, 1204}, 0.197317, {{1, "150f 1t 99f 51t"}, {3, "51t 99f 1t 150f"}});
    expectRows("TrWind", {9, 9, 36}, 0.45, {{0, "2f 3t 4f"}, {3, "4f 1t 1f 3t"}, {4, "9t"}, {8, "4f 3t 2f"}});
}

// At 0.06 the rectangle is six wide, of which five are shown, and 18% opaque: 201 over 100 makes 118.18.
TEST(Zoom, FadesARectangleInOnceItIsSixWideAndEndsOnAnExactCopyOfTheColours) {
    Scene first({100, 100, 400}, Pixel{100, 100, 100, 9}, Pixel{201, 201, 201, 9});
    EXPECT_EQ(first.draw(transition("TrZoom"), 0.06).rowValues(48, 1), "48x100 5x118 47x100");
    Scene last({8, 6, 32});
    for (const auto& [position, duration] : {std::pair{1.0, 1.0}, {0.0, 0.0}, {-1.0, -1.0}, {1.5, 1.0}}) {
        last.draw(transition("TrZoom"), position, duration);
        EXPECT_EQ(last.runs(0, 4, 48, 3) + last.runs(3, 4, 48, 1), "48t48k") << position;
    }
    last.draw(transition("TrZoom"), std::nextafter(1.0, 0.0));  // its rectangle leaves two edges out
    EXPECT_EQ(last.runs(32 * 4, 4, 16, 3), "1? 7t 8?");
}
