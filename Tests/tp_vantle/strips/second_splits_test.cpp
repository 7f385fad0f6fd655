// Byte 0 shows the weight of imgFrom, byte 1 that of imgTo and byte 2 what truncating both shares loses. One
// quarter is eased to 0.02326.
#include "frames.h"

using namespace tests;

static Scene drawn(const char* function, const Geometry& g, double position) {
    Scene scene(g, Pixel{255, 0, 37, 90}, Pixel{0, 255, 200, 91});
    return std::move(scene.draw(transition(function), position));
}

TEST(RowSplit2, RampsFromTheCentreRowInABandRoundedOutward) {
    const Scene first = drawn("TrRowSplit2", {2, 65, 8}, 0.25);
    EXPECT_EQ(first.columnValues(0, 0), "30x255 1x240 1x248 1x255 1x248 1x240 30x255");  // 1.51 rows
    EXPECT_EQ(first.columnValues(1, 2), "30x37 1x45 1x40 1x37 1x40 1x45 30x37");
    EXPECT_EQ(drawn("TrRowSplit2", {2, 65, 8}, 0.75).columnValues(1, 1),
              "30x255 1x15 1x7 1x0 1x7 1x15 30x255");
    EXPECT_EQ(drawn("TrRowSplit2", {2, 6, 8}, 0.5).columnValues(0, 1), "1x255 1x170 1x85 1x0 1x85 1x170");
    EXPECT_EQ(drawn("TrRowSplit2", {2, 21, 8}, 0.75).columnValues(0, 1), "21x255") << "no band";
}

TEST(ColSplit2, RampsFromTheCentreColumnInABandTruncated) {
    const Scene first = drawn("TrColSplit2", {200, 2, 800}, 0.25);  // 4.65
    EXPECT_EQ(first.rowValues(1, 0), "96x255 1x243 1x246 1x248 1x251 1x254 1x252 1x249 1x247 96x255");
    EXPECT_EQ(first.rowValues(1, 1), "96x0 1x10 1x7 1x5 1x2 1x0 1x1 1x4 1x6 96x0");
    EXPECT_EQ(drawn("TrColSplit2", {65, 2, 260}, 0.75).rowValues(0, 1), "31x255 1x11 1x0 32x255");
    expectRows("TrColSplit2", {9, 2, 39}, 0.499, {{1, "1df 7?f 1f |3f"}});
    expectRows("TrColSplit2", {9, 2, 39}, 0.5, {{1, "1dt 7?t 1t |3t"}});
}

TEST(CrossSplit2, TakesTheMeanOfBothRampsInBarsGrowingLinearly) {
    const Scene first = drawn("TrCrossSplit2", {10, 6, 40}, 0.25);
    EXPECT_EQ(first.rowValues(1, 1), "3x0 1x136 1x110 1x85 1x110 1x136 2x0");  // 2.5 columns
    EXPECT_EQ(first.rowValues(2, 1), "1x170 1x144 1x119 1x93 1x68 1x42 1x68 1x93 1x119 1x144");  // 1.5 rows
    EXPECT_EQ(first.rowValues(3, 2), "1x117 1x102 1x84 1x69 1x52 1x37 1x52 1x69 1x84 1x102");
    EXPECT_EQ(drawn("TrCrossSplit2", {10, 6, 40}, 0.75).rowValues(5, 0),
              "3x0 1x119 1x145 1x170 1x145 1x119 2x0");
    // Around the middle all but one corner is in the cross.
    expectRows("TrCrossSplit2", {4, 4, 19}, 0.4999, {{0, "1fk 3?k |3k"}, {1, "4?k |3k"}});
    expectRows("TrCrossSplit2", {4, 4, 19}, 0.5, {{0, "1tk 3?k |3k"}});
}

// Frames wider than what is worked out at a time, 4096 columns.
TEST(SecondSplits, ContinueTheirRampsInWideFrames) {
    const auto at = [](const char* function, std::int32_t y, double position) {
        const Scene scene = drawn(function, {10000, 2, 40000}, position);
        std::vector<std::int32_t> values;
        for (const std::int32_t x : {0, 2501, 4095, 4096, 5000, 8191, 8192, 9000})
            values.push_back(scene.value(x, y, 1));
        return values;
    };
    EXPECT_EQ(at("TrColSplit2", 0, 0.5), (std::vector{254, 127, 46, 46, 0, 161, 161, 203}));
    EXPECT_EQ(at("TrCrossSplit2", 1, 0.25), (std::vector{127, 63, 23, 23, 0, 81, 81, 102}));
    EXPECT_EQ(at("TrCrossSplit2", 0, 0.25), (std::vector{0, 191, 150, 150, 127, 0, 0, 0}));
}
