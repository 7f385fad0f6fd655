#include "frames.h"

using namespace tests;

TEST(VerShutter, OpensSlatsOfThreeSixtyFourthsOfTheWidth) {
    expectColumns("TrVerShutter", {1920, 1, 7688}, 0.5, {{44, "1tf"}, {45, "1f"}, {89, "1f"}, {90, "1tf"}});
    expectColumns("TrVerShutter", {1920, 1, 7688}, 0.25, {{21, "1tf"}, {22, "1f"}, {1912, "1f"}});  // 22.5
    for (const std::int32_t width : {43, 63})  // 2.02, 2.95
        expectColumns("TrVerShutter", {width, 2, 4 * width}, 0.75, {{0, "2tf"}, {1, "2f"}, {42, "2tf"}});
    expectRows("TrVerShutter", {10, 1, 47}, 0.999, {{0, "10f |7f"}});
}

TEST(HorShutter, OpensSlatsOfATwelfthOfTheHeight) {
    expectRows("TrHorShutter", {2, 1080, 13}, 0.5, {{44, "2tf |5f"}, {45, "2f |5f"}, {90, "2tf |5f"}});
    expectRows("TrHorShutter", {90, 35, 360}, 0.75, {{0, "90tf"}, {1, "90f"}, {2, "90tf"}});  // 2.92
    expectColumns("TrHorShutter", {2, 23, 8}, 0.999, {{1, "23f"}});
}

// A tenth of the height, rounded up to even, in both directions; the opening rounded down to even.
TEST(CrossShutters, OpenEvenSlatsOfATenthOfTheHeight) {
    const auto expect = [](std::int32_t height, double position, std::int32_t open, const char* slats) {
        const Geometry g{13 * (height > 999 ? 9 : 1), height, 480};
        const std::string all = std::to_string(g.width), pad = " |" + std::to_string(480 - 4 * g.width) + "f";
        const std::string whole = all + "t" + pad, some = slats + pad, none = all + "f" + pad;
        expectRows("TrCrossShutter1", g, position, {{open - 1, whole.c_str()}, {open, some.c_str()}});
        expectRows("TrCrossShutter2", g, position, {{open - 1, some.c_str()}, {open, none.c_str()}});
    };
    expect(1080, 0.25, 26, "26t 82f 9t");
    expect(1080, 0.5, 54, "54t 54f 9t");
    expect(90, 0.75, 6, "6t 4f 3t");
    expect(109, 0.999, 8, "8t 2f 3t");
    expect(110, 0.2, 2, "2t 10f 1t");
    for (const char* const function : {"TrCrossShutter1", "TrCrossShutter2"})
        for (const std::int32_t height : {9, 29}) expectRows(function, {4, height, 16}, 0.999, {{0, "4f"}});
}
