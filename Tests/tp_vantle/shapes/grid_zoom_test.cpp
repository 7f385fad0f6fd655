#include "frames.h"

using namespace tests;

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
