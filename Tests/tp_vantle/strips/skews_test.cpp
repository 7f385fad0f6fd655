// imgFrom is 255 and imgTo 0 in bytes 0 and 3, so that there 255 is a pixel not written and less is 254 less
// the weight of imgTo, at full weight 0; in byte 1 it is the other way around.
#include <map>
#include <set>

#include "frames.h"

using namespace tests;

static Scene drawn(const char* function, const Geometry& g, double position) {
    Scene scene(g, Pixel{255, 0, 100, 255}, Pixel{0, 255, 100, 0});
    return std::move(scene.draw(transition(function), position));
}

/// Expects values of byte 0 in a row of one, by distance from the diagonal at one end of it.
static void expect(const char* function, std::int32_t width, double position,
                   const std::map<std::int32_t, std::int32_t>& values) {
    const Scene scene = drawn(function, {width, 1, 4 * width}, position);
    const bool rising = std::set<std::string>{"TrSkewLeftSplit", "TrSkewRightMerge"}.contains(function);
    for (const auto& [distance, value] : values)
        EXPECT_EQ(scene.value(rising ? width - 1 - distance : distance, 0, 0), value)
            << function << " " << width << ": " << distance;
}

TEST(SkewSplits, MoveASoftEdgeOutwardAndCompressItInTheEnd) {
    expect("TrSkewRightSplit", 200, 0.5,
           {{0, 0}, {60, 0}, {61, 3}, {100, 127}, {139, 251}, {140, 255}});            // at 140
    expect("TrSkewRightSplit", 200, 0.25, {{0, 232}, {1, 235}, {6, 251}, {7, 255}});   // at 7
    expect("TrSkewRightSplit", 100, 0.75, {{96, 0}, {97, 63}, {98, 127}, {99, 191}});  // 4
    // Linear, and 80 pixels further in until the corner is reached.
    expect("TrSkewLeftSplit", 400, 0.5, {{80, 0}, {81, 3}, {159, 251}, {160, 255}});
    expect("TrSkewLeftSplit", 200, 0.3, {{0, 242}, {1, 245}, {3, 251}, {4, 255}});
    expect("TrSkewLeftSplit", 80, 0.5, {{0, 255}, {79, 255}});
    expect("TrSkewLeftSplit", 79, 0.5, {{0, 0}, {1, 3}, {40, 129}, {78, 251}});  // 79 are left
    expect("TrSkewLeftSplit", 100, 0.75, {{55, 0}, {56, 5}, {99, 249}});         // 45
}

TEST(SkewMerges, MoveTheEdgeInwardAndCompressItInTheEnd) {
    for (const char* const function : {"TrSkewLeftMerge", "TrSkewRightMerge"}) {
        expect(function, 200, 0.5, {{59, 255}, {60, 254}, {61, 251}, {139, 3}, {140, 0}});
        expect(function, 80, 0.5, {{0, 254}, {40, 127}, {79, 3}});                    // 80
        expect(function, 78, 0.5, {{0, 254}, {40, 125}, {77, 6}});                    // 79
        expect(function, 100, 0.75, {{0, 254}, {1, 191}, {3, 63}, {4, 0}, {99, 0}});  // 4
    }
}

TEST(Skews, LieAboutTheirDiagonal) {
    EXPECT_EQ(drawn("TrSkewRightSplit", {26, 22, 104}, 0.2).rowValues(11, 1), "12x0 1x2 13x0") << "not 13";
    EXPECT_EQ(drawn("TrSkewLeftMerge", {100, 2, 400}, 0.75).rowValues(1, 0),
              "47x0 1x63 1x127 1x191 1x254 1x191 1x127 1x63 46x0");
    EXPECT_EQ(drawn("TrSkewRightMerge", {100, 2, 400}, 0.75).rowValues(1, 0),
              "46x0 1x63 1x127 1x191 1x254 1x191 1x127 1x63 47x0");
}
