#include "frames.h"

using namespace tests;

// At one half the ramp runs from 2 to 6, a quarter of the difference a pixel.
TEST(LinearWipe, RampsOverHalfTheWidthWhateverTheHeight) {
    Scene scene({8, 8, 35}, Pixel{200, 101, 0, 255}, Pixel{100, 100, 255, 0});
    scene.draw(transition("TrLinearWipeUpDown"), 0.5);
    EXPECT_EQ(scene.columnValues(5, 0), "3x100 1x125 1x150 1x175 2x200");
    EXPECT_EQ(scene.columnValues(5, 1), "6x100 2x101");
    EXPECT_EQ(scene.columnValues(5, 3), "3x0 1x63 1x127 1x191 2x255");
    scene.draw(transition("TrLinearWipeLeftRight"), 0.5);
    EXPECT_EQ(scene.rowValues(1, 3), "3x0 1x63 1x127 1x191 2x255");
    scene.draw(transition("TrLinearWipeLeftRight"), 0.4);  // eased once more below one half
    EXPECT_EQ(scene.rowValues(1, 0), "1x196 7x200");
}
