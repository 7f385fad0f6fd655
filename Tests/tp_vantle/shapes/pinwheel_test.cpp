#include "frames.h"

using namespace tests;

// The blades have opened by 0.01 at 0.1973165, one row off the centre that is 100 columns; by 0.555, a slope
// of 0.62, at 0.45.
TEST(Pinwheel, TurnsItsBladesAnticlockwiseFromACrossOfOnePixel) {
    expectRows("TrWind", {9, 7, 40}, 0.197316, {{0, "9f |4f"}, {3, "9f |4f"}});
    expectRows("TrWind", {9, 7, 40}, 0.197317, {{0, "4f 1t 4f |4f"}, {3, "9t |4f"}, {4, "4f 1t 4f |4f"}});
    expectRows("TrWind", {301, 5, 1204}, 0.197317, {{1, "150f 1t 99f 51t"}, {3, "51t 99f 1t 150f"}});
    expectRows("TrWind", {4, 4, 16}, 0.2, {{1, "2f 1t 1f"}, {2, "4t"}, {3, "2f 1t 1f"}});
    expectRows("TrWind", {9, 9, 36}, 0.45, {{0, "2f 3t 4f"}, {3, "4f 1t 1f 3t"}, {4, "9t"}});
    expectRows("TrWind", {9, 9, 36}, 0.45, {{5, "3t 1f 1t 4f"}, {8, "4f 3t 2f"}});
}
