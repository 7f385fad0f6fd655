// Pictures of the warps worked out by hand.
#include "plain_rules.h"

using namespace tests;

// At one half the edge has turned by 0.864, 0.0785 or half its softness past the diagonal.
TEST(Roll, TurnsAboutTheBottomLeftCorner) {
    EXPECT_EQ(weights("TrRollClockwise", 4, 3, 0.5, 2, {0, 1, 2}, 3), " 255 127 0");
    EXPECT_EQ(weights("TrRollAntiClockwise", 4, 3, 0.5, 1, {1, 2, 3}), " 0 127 255");
}

struct Place {
    std::int32_t x, y;
};

/// Expects that a pixel is the whole one of another place in an input frame.
static void expectMoved(const Scene& scene, const Bytes& source, Place to, Place from) {
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(scene.out[scene.offsetOf(to.x, to.y) + i], source[scene.offsetOf(from.x, from.y) + i])
            << to.x << ", " << to.y;
}

// Five rows have slid in.
TEST(Topple, SlidesOneFrameInAndSquashesTheOtherOntoItsBottomRow) {
    Scene scene({3, 10, 12});
    scene.draw(transition("TrTopple"), 0.5);
    expectMoved(scene, scene.to, {2, 0}, {2, 5});
    expectMoved(scene, scene.from, {2, 5}, {2, 1});
    expectMoved(scene, scene.from, {2, 9}, {2, 9});
}

// Eased to 0.26: four rows and five columns; at one half eight and ten.
TEST(RowCosines, AdvanceAlongHalfACosineInBandsOfFour) {
    expectRows("TrRowCosVantle", {10, 8, 43}, 0.415, {{0, "5tf 5f |3f"}, {2, "2tf 8f |3f"}});
    expectRows("TrRowCosVantle", {10, 8, 43}, 0.5, {{3, "6tf 4f |3f"}, {4, "5f 5tf |3f"}});
    Scene slide({10, 8, 43});
    slide.draw(transition("TrRowCosSlide"), 0.5);
    expectMoved(slide, slide.to, {0, 3}, {4, 3});
    expectMoved(slide, slide.to, {9, 4}, {4, 4});
}

// After a quarter of a turn what was on the right is at the bottom, by 0.7625 of its distance.
TEST(Twirl, TurnsClockwiseAndShrinksAndHasEndedWhereverBothTimesAreAlike) {
    Scene scene({80, 80, 320});
    scene.draw(transition("TrTwrl"), 0.125);
    expectMoved(scene, scene.from, {38, 68}, {77, 43});
    EXPECT_EQ(weights("TrTwrl", 80, 80, 0.125, 72, {38}), " 0");
    for (const double same : {0.0, -1.0})
        EXPECT_EQ(scene.draw(transition("TrTwrl"), same, same).out, scene.to);
}

// The picture is put together part by part, whose corners are needed at some angles only. After quarters of a
// turn rounding decides which row is shown.
TEST(Twirl, ShowsEveryPixelAsItsPlainRuleDoes) {
    const auto expectPlain = [](const Geometry& g, double position) {
        Scene scene(g);
        ASSERT_TRUE(scene.draw(transition("TrTwrl"), position).out ==
                    plainRuleOf("TrTwrl")->draw(scene, position, 1.0))
            << g.width << "x" << g.height << " at " << position;
    };
    for (int i = 1; i < 100; ++i) expectPlain({333, 217, 1332}, i / 100.0);
    for (int i = 1; i < 16; ++i)
        for (const Geometry& g : {Geometry{2100, 90, 8400}, {130, 1300, 523}}) expectPlain(g, i / 16.0);
}
