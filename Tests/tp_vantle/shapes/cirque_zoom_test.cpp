#include "frames.h"

using namespace tests;

// The radius is 200, rings end at the depths 25, 48, 70 ... 198 and 200; the odd ones weigh imgFrom by half.
TEST(CirqueZoom, WeighsTheRingsInTurn) {
    const auto columns = {521, 520, 519, 496, 144, 495, 473, 472, 451, 321, 320};
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.5, 240, columns),
              " 0 0 10 244 244 189 131 174 251 253 128");
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.5, 240, {495, 451}, 3), " 0 0");
}

// At 0.006 the radius is 2 and the first ring empty: the rim lies in the second, the centre in none. At 0 the
// disc is the centre, whose share of imgFrom is just below 255.
TEST(CirqueZoom, StartsWithEmptyRingsAndShowsImgToPastTheLast) {
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.006, 240, {323, 322, 320}), " 0 255 2");
    EXPECT_EQ(weights("TrCirqueZoomIn", 9, 9, 0, 5, {4, 5, 6}), " 0 1 0");
    expectRows("TrCirqueZoomIn", {9, 9, 40}, 0.9991, {{0, "9t |4t"}, {5, "9t |4t"}});
}
