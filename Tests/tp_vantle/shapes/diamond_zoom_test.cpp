#include "frames.h"

using namespace tests;

// Eased to 0.0597, 0.2242 and 0.3530 at 0.3, 0.4 and 0.45.
TEST(DiamondZoom, PeaksRightOfTheMiddleAndCoversTheFrameOnceItReachesItsWidth) {
    // From column 4 outward: 3, 2.25, 1.5, 0.75 and 0 rows up and down.
    expectRows("TrDiamondZoomOut", {8, 6, 40}, 0.5,
               {{0, "4f 1t 3f |8f"}, {1, "2f 5t 1f |8f"}, {3, "1f 7t |8f"}});
    // 1.77 columns of aspect 7/3: 4.67 and 2.33 rows.
    expectColumns("TrDiamondZoomOut", {5, 13, 20}, 0.45, {{1, "13f"}, {2, "4f 4t 5f"}, {3, "1f 10t 2f"}});
    expectColumns("TrDiamondZoomIn", {5, 5, 24}, 0.3, {{0, "5f"}, {4, "5f"}});        // 4.70 columns
    expectColumns("TrDiamondZoomIn", {5, 5, 24}, 0.4, {{0, "1t 2f 2t"}, {4, "5f"}});  // 3.88
    expectColumns("TrDiamondZoomOut", {8, 9, 32}, 0.3, {{4, "9f"}});                  // 0.478
    expectColumns("TrDiamondZoomOut", {9, 9, 36}, 0.3, {{5, "3f 2t 4f"}});            // 0.537
}
