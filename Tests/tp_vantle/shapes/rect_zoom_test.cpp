#include "frames.h"

using namespace tests;

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
