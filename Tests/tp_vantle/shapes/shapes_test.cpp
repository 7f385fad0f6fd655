// Pictures of the shapes worked out by hand.
#include "catalogue/effects.h"
#include "frame/progress.h"
#include "frame/stage.h"
#include "frames.h"

using namespace tests;

// What is replaced is neither frame's: byte 3 stays imgFrom's.
TEST(RectZoom, ShrinksToARoundedUpCentreAndGrowsFromTheMiddle) {
    expectRows("TrRectZoomIn", {5, 5, 20}, 0, {{1, "5df"}, {2, "2df 3f"}, {4, "2df 3f"}});
    expectRows("TrRectZoomOut", {5, 5, 20}, 1, {{0, "5f"}, {1, "1f 3tf 1f"}, {3, "1f 3tf 1f"}, {4, "5f"}});
}

// Half of 800 and 100.5 more is 500.5: at one half the radius is 250. imgTo gains 2.55 a pixel inward. In the
// disc that returns the limit is 5, a step from the centre (4, 3) weighs 51.
TEST(RoundZoom, SoftensAHundredPixelsInsideTheDiscOrAllOfIt) {
    const auto columns = {320, 170, 169, 520, 569, 570, 571};
    EXPECT_EQ(weights("TrRoundZoomIn", 640, 480, 0.5, 240, columns, 3), " 255 255 252 127 2 0 0");
    EXPECT_EQ(weights("TrRoundZoomOut", 640, 480, 0.5, 240, columns), " 0 0 3 128 253 255 255");
    EXPECT_EQ(weights("TrRoundZoomIn2", 8, 6, 0.5, 0, {0, 1, 3, 7}), " 255 204 153 204");
}

// From column 4 outward: 3, 2.25, 1.5, 0.75 and 0 rows up and down.
TEST(DiamondZoom, PeaksRightOfTheMiddle) {
    expectRows("TrDiamondZoomOut", {8, 6, 40}, 0.5, {{0, "4f 1t 3f |8f"}, {1, "2f 5t 1f |8f"}});
}

TEST(GridZoom, CountsItsCellsFromTheBottomLeft) {
    expectRows("TrGridZoomIn", {64, 480, 256}, 0.5, {{443, "12f 25tf 23f 4tf"}, {467, "12f 25tf 23f 4tf"}});
    expectRows("TrGridZoomOut", {30, 250, 120}, 0.5, {{242, "7tf 13f 10tf"}, {243, "30tf"}});
}

// The radius is 200, rings end at the depths 25, 48, 70 ... 198 and 200; the odd ones weigh imgFrom by half.
TEST(CirqueZoom, WeighsTheRingsInTurn) {
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.5, 240, {521, 520, 519, 496, 495, 473, 472, 320}),
              " 0 0 10 244 189 131 174 128");
}

// At one half the middle of the soft edge points straight down. Then 0.0785 are left for a soft edge twice as
// wide, and the pixel 20 rows up and one aside is 0.04996 from 12 o'clock.
TEST(Sweep, TurnsFromStraightUpAndSqueezesTheSoftEdgeInTheEnd) {
    EXPECT_EQ(weights("TrSweepClockwise", 9, 9, 0.5, 8, {0, 3, 4, 7}), " 0 0 127 255");
    EXPECT_EQ(weights("TrSweepAntiClockwise", 3, 41, 0.7781355, 0, {0, 1, 2}), " 255 255 162");
}

// Opened by 0.01: one row off the centre is 100 columns away.
TEST(Pinwheel, TurnsItsBladesAnticlockwiseFromACrossOfOnePixel) {
    expectRows("TrWind", {301, 5, 1204}, 0.197317, {{1, "150f 1t 99f 51t"}, {3, "51t 99f 1t 150f"}});
}

// At 0.06 the rectangle is six wide, of which five are shown, and 18% opaque: 201 over 100 makes 118.18.
TEST(Zoom, FadesARectangleInOnceItIsSixWideAndHasEndedWhereverBothTimesAreAlike) {
    Scene scene({100, 100, 400}, Pixel{100, 100, 100, 9}, Pixel{201, 201, 201, 9});
    EXPECT_EQ(scene.draw(transition("TrZoom"), 0.06).rowValues(48, 1), "48x100 5x118 47x100");
    for (const double same : {0.0, -1.0})
        EXPECT_EQ(scene.draw(transition("TrZoom"), same, same).rowValues(48, 1), "100x201");
}

// Single precision takes the last column of so many for the one after it.
TEST(Zoom, StaysWithinAFrameOfMoreColumnsThanSinglePrecisionCounts) {
    constexpr std::int32_t width = (1 << 24) + 4;
    const auto from = guarded(Bytes(std::size_t{4} * width, 7), Guard::after, PROT_READ);
    Bytes out(std::size_t{4} * width);
    vantle::zoom({width, 1, 4 * width, out.data(), from.get(), from.get()}, {1.0, 0.0});
    EXPECT_EQ(out[out.size() - 2], 7);
}
