#include "frames.h"

using namespace tests;

static std::string ramp(const char* function, int size, double t, const Pixel& from, const Pixel& to,
                        int byte) {
    const bool down = std::string_view(function).ends_with("Down");
    Scene scene({8, down ? size : 2, 35}, from, to);
    scene.draw(transition(function), t);
    return down ? scene.columnValues(5, byte) : scene.rowValues(1, byte);
}

// At one half the ramp runs from 2 to 6, a quarter of the difference a pixel.
TEST(LinearWipe, RampsOverHalfTheWidthWhateverTheHeight) {
    constexpr Pixel from{200, 101, 0, 255}, to{100, 100, 255, 0};
    const auto both = [&](double t, int byte) {
        std::string down = ramp("TrLinearWipeUpDown", 8, t, from, to, byte);
        EXPECT_EQ(ramp("TrLinearWipeLeftRight", 8, t, from, to, byte), down) << t;
        return down;
    };
    EXPECT_EQ(both(0.5, 0), "3x100 1x125 1x150 1x175 2x200");
    EXPECT_EQ(both(0.5, 1), "6x100 2x101");
    EXPECT_EQ(both(0.5, 3), "3x0 1x63 1x127 1x191 2x255");
    EXPECT_EQ(both(0.4, 0), "1x196 7x200");  // eased once more below one half
    EXPECT_EQ(ramp("TrLinearWipeUpDown", 16, 1, from, to, 3), "9x0 1x63 1x127 1x191 4x255");
}

// Columns are worked out 4096 at a time.
TEST(LinearWipe, ContinuesInWideFrames) {
    const auto at = [](double t) {
        return weights("TrLinearWipeLeftRight", 10000, 1, t, 0, {2500, 4095, 4096, 7499, 8191, 8192, 9000});
    };
    EXPECT_EQ(at(0.5), " 255 173 173 0 0 0 0");
    EXPECT_EQ(at(0.6), " 255 255 255 211 175 175 134");
}
