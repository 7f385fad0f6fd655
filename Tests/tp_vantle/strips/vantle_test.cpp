#include "frames.h"

using namespace tests;

// A band is a thirty-second of the height, at least one row.
TEST(RowVantle, OpensBandsFromTheLeftAndTheRightInTurn) {
    constexpr std::int32_t cases[][2] = {{3, 1}, {31, 1}, {63, 1}, {64, 2}, {95, 2}, {96, 3}, {1080, 33}};
    for (const auto& [height, band] : cases) {
        expectRows("TrRowVantle", {8, height, 32}, 0.5,
                   {{0, "4t 4f"}, {band - 1, "4t 4f"}, {2 * band, "4t 4f"}});
        expectRows("TrRowVantle", {8, height, 32}, 0.5, {{band, "4f 4t"}, {2 * band - 1, "4f 4t"}});
    }
}

TEST(RowVantle, ClipsTheLastBandsAtTheBottomRow) {
    expectRows("TrRowVantle", {8, 100, 32}, 0.5,
               {{95, "4f 4t"}, {96, "4t 4f"}, {98, "4t 4f"}, {99, "4f 4t"}});
    expectRows("TrRowVantle", {8, 1080, 32}, 0.5, {{1055, "4f 4t"}, {1056, "4t 4f"}, {1079, "4t 4f"}});
}

TEST(RowVantle, CountsTheRightBandsFromTheEndOfThePitch) {
    expectRows("TrRowVantle", {8, 2, 40}, 0.5, {{0, "4t 4f |8f"}, {1, "6f 2t |8t"}});
    expectRows("TrRowVantle", {8, 2, 40}, 1, {{0, "8t |8f"}, {1, "2f 6t |8t"}});
    expectRows("TrRowVantle", {8, 2, 35}, 0.5, {{0, "4t 4f |3f"}, {1, "4f 1ft 3t |3t"}});
}

// A band is a sixty-fourth of the width, at least one column. The easing is the cubic alone: 3/16 - 2/64 =
// 0.15625 at one quarter.
TEST(ColVantle, OpensBandsFromTheTopAndTheBottomInTurn) {
    constexpr std::int32_t cases[][2] = {{3, 1}, {63, 1}, {127, 1}, {128, 2}, {1000, 15}, {1920, 30}};
    for (const auto& [w, band] : cases) {
        expectColumns("TrColVantle", {w, 64, 4 * w}, 0.25,
                      {{0, "10t 54f"}, {band - 1, "10t 54f"}, {2 * band, "10t 54f"}});
        expectColumns("TrColVantle", {w, 64, 4 * w}, 0.25, {{band, "54f 10t"}, {2 * band - 1, "54f 10t"}});
    }
    expectColumns("TrColVantle", {1000, 64, 4000}, 0.75,
                  {{989, "10f 54t"}, {990, "54t 10f"}, {999, "54t 10f"}});
}

TEST(ColVantle, RoundsTheOpenedHeightAndLeavesThePaddingAlone) {
    expectColumns("TrColVantle", {2, 16, 8}, 0.25, {{0, "3t 13f"}, {1, "13f 3t"}});  // 2.5
    // 4.5: both kinds of band reach the middle row.
    expectRows("TrColVantle", {4, 9, 24}, 0.5,
               {{3, "1t 1f 1t 1f |8k"}, {4, "4t |8k"}, {5, "1f 1t 1f 1t |8k"}});
}

TEST(CrossVantle, UnitesBandsOfTenFromAllFourEdges) {
    // 2.33 columns and 1.40 rows are open, then 25 columns and 15 rows.
    constexpr Geometry quarter{100, 60, 400}, half{50, 30, 208};
    expectRows("TrCrossVantle", quarter, 0.25,
               {{0, "10t 10f 10t 10f 10t 10f 10t 10f 10t 10f"}, {1, "2t 98f"}});
    expectRows("TrCrossVantle", quarter, 0.25,
               {{9, "2t 98f"}, {10, "98f 2t"}, {19, "98f 2t"}, {20, "2t 98f"}});
    expectRows("TrCrossVantle", quarter, 0.25,
               {{58, "98f 2t"}, {59, "10f 10t 10f 10t 10f 10t 10f 10t 10f 10t"}});
    expectRows("TrCrossVantle", half, 0.5, {{9, "30t 10f 10t |8f"}, {10, "10t 10f 30t |8f"}});
    expectRows("TrCrossVantle", half, 0.5, {{14, "10t 10f 30t |8f"}, {15, "10f 10t 5f 25t |8f"}});
    expectRows("TrCrossVantle", half, 0.5, {{19, "10f 10t 5f 25t |8f"}, {20, "25t 5f 10t 10f |8f"}});
}
