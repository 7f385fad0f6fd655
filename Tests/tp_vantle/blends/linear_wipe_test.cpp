#include "frames.h"

using namespace tests;

// At one half the ramp runs from 2 to 6, a quarter of the difference a pixel.
TEST(LinearWipe, RampsOverHalfTheWidthWhateverTheHeight) {
    Scene scene({8, 12, 35}, Pixel{200, 101, 0, 255}, Pixel{100, 100, 255, 0});
    EXPECT_EQ(scene.draw(transition("TrLinearWipeLeftRight"), 0.5).rowValues(1, 3),
              "3x0 1x63 1x127 1x191 2x255");
    EXPECT_EQ(scene.draw(transition("TrLinearWipeUpDown"), 0.5).rowValues(5, 0), "8x175");
}
