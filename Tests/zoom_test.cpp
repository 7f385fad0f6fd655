#include "plain_rule.h"

using namespace tests;

// Single precision throughout. Byte 3 and the padding are never written.
static Bytes zoom(const Scene& s, double position, double duration) {
    const Geometry& g = s.geometry;
    Bytes out = blended(s, s.before, [](int, int) { return 255; });
    if (position == duration) return out;
    const auto t = static_cast<float>(position / duration), opacity = std::min(3 * t, 1.0F);
    const auto along = [](int at, int size, float scale) {
        return static_cast<int>(static_cast<float>(at - size / 2) / scale + static_cast<float>(size / 2));
    };
    const auto source = [&](int x, int y, float scale) {
        return offsetOf(g, along(x, g.width, scale), along(y, g.height, scale));
    };
    const auto within = [t](int at, int size) {
        return std::abs(at - size / 2) < static_cast<int>(static_cast<float>(size) * t) / 2;
    };
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x)
            for (std::size_t i = 0; i < 3; ++i) {
                float byte = s.from[source(x, y, 20 * t + 1) + i];
                if (within(x, g.width) && within(y, g.height) && static_cast<float>(g.width) * t >= 6)
                    byte = s.to[source(x, y, t) + i] * opacity + byte * (1 - opacity);
                out[offsetOf(g, x, y) + i] = static_cast<std::uint8_t>(byte);
            }
    return out;
}

TEST(Zoom, FollowsItsRulePixelByPixel) { expectRule("TrZoom", zoom, 0.06); }

// At 0.06 the rectangle is six wide, of which five are shown, and 18% opaque: 201 over 100 makes 118.18.
TEST(Zoom, FadesARectangleInOnceItIsSixWide) {
    Bytes out(40000), from(40000, 100), to(40000, 201);
    const auto image = [](Bytes& b) { return vantle::Image(DIWrap(b.data(), 100, 100, 400, 32)); };
    transition("TrZoom")(image(out).get(), image(from).get(), image(to).get(), param(0.06, 1).get());
    for (int x = 0; x < 100; ++x)
        EXPECT_EQ(out[offsetOf({100, 100, 400}, x, 48)], x >= 48 && x <= 52 ? 118 : 100) << x;
}

TEST(Zoom, HalvesOneFrameAndMagnifiesTheOther) {
    Scene scene({100, 50, 400});
    scene.draw(transition("TrZoom"), 0.5);
    const auto at = [&](int x, int y) { return offsetOf(scene.geometry, x, y); };
    EXPECT_EQ(scene.out[at(26, 14)], scene.to[at(2, 3)]);
    EXPECT_EQ(scene.out[at(49, 36)], scene.to[at(48, 47)]);
    EXPECT_EQ(scene.out[at(25, 14)], scene.from[at(47, 24)]);  // 47.73
    EXPECT_EQ(scene.out[at(50, 13)], scene.from[at(50, 23)]);  // 23.91
    EXPECT_EQ(scene.out[at(99, 49)], scene.from[at(54, 27)]);  // 54.45, 27.18
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
