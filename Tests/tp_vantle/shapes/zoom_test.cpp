#include <cmath>

#include "frames.h"

using namespace tests;

// At 0.06 the rectangle is six wide, of which five are shown, and 18% opaque: 201 over 100 makes 118.18.
TEST(Zoom, FadesARectangleInOnceItIsSixWide) {
    Scene scene({100, 100, 400}, Pixel{100, 100, 100, 9}, Pixel{201, 201, 201, 9});
    EXPECT_EQ(scene.draw(transition("TrZoom"), 0.06).rowValues(48, 1), "48x100 5x118 47x100");
}

TEST(Zoom, EndsOnAnExactCopyOfTheColours) {
    Scene scene({8, 6, 32});
    for (const auto& [position, duration] : {std::pair{1.0, 1.0}, {0.0, 0.0}, {-1.0, -1.0}, {1.5, 1.0}}) {
        scene.draw(transition("TrZoom"), position, duration);
        EXPECT_EQ(scene.runs(0, 4, 48, 3) + scene.runs(3, 4, 48, 1), "48t48k") << position;
    }
    scene.draw(transition("TrZoom"), std::nextafter(1.0, 0.0));  // its rectangle leaves two edges out
    EXPECT_EQ(scene.runs(32 * 4, 4, 16, 3), "1? 7t 8?");
}
