#include "frames.h"

using namespace tests;

// Eased to 0.26: four rows and five columns; at one half eight and ten.
TEST(RowCosVantle, AdvancesAlongHalfACosineInBandsOfFour) {
    constexpr Geometry g{10, 8, 43};
    expectRows("TrRowCosVantle", g, 0.415,
               {{0, "5tf 5f |3f"}, {1, "4tf 6f |3f"}, {2, "2tf 8f |3f"}, {3, "10f |3f"}, {4, "10f |3f"}});
    expectRows("TrRowCosVantle", g, 0.5,
               {{0, "10tf |3f"}, {3, "6tf 4f |3f"}, {4, "5f 5tf |3f"}, {6, "9f 1tf |3f"}, {7, "10f |3f"}});
    expectRows("TrRowCosVantle", {3, 1, 12}, 0.499, {{0, "3f"}});
    expectRows("TrRowCosVantle", {3, 1, 12}, 0.5, {{0, "3tf"}});
}

TEST(RowCosSlide, ShiftsTheLeadingEndsInFromBothSides) {
    constexpr Geometry g{10, 8, 43};
    Scene scene(g);
    scene.draw(transition("TrRowCosSlide"), 0.5);
    EXPECT_EQ(scene.row(0) + ", " + scene.row(7), "10t |3t, 10f |3f");  // 10 is the whole row
    // n pixels of row y from its column `first` on: in from the left its right end, from the right its left.
    for (const auto& [y, n, first, shownAt] :
         {std::array{1, 9, 1, 0}, {3, 6, 4, 0}, {4, 5, 0, 5}, {6, 1, 0, 9}}) {
        const auto start = (7 - y) * 43;
        Bytes expected(scene.from.begin() + start, scene.from.begin() + start + 43);
        std::copy_n(scene.to.begin() + start + 4 * first, 4 * n, expected.begin() + 4 * shownAt);
        EXPECT_EQ(Bytes(scene.out.begin() + start, scene.out.begin() + start + 43), expected) << y;
    }
}
