// One quarter is eased to 0.02326, so that the bands of 64, 65, 150 and 151 lines are 1, 2, 3 and 4 lines.
#include "frames.h"

using namespace tests;

/// Expects runs across the bands, in frames of several sizes.
static void expectAcross(const char* function, double position, Lines sizes) {
    for (const auto& [size, runs] : sizes)
        if (std::string_view(function).starts_with("TrRow"))
            expectColumns(function, {2, size, 8}, position, {{1, runs}});
        else
            expectRows(function, {size, 2, 4 * size}, position, {{1, runs}});
}

TEST(Splits, OpenAnOddBandAboutTheLaterMiddle) {
    expectAcross("TrRowSplit", 0.25, {{64, "64f"}, {65, "31f 3tf 31f"}, {150, "74f 3tf 73f"}});
    expectAcross("TrColSplit", 0.25, {{64, "64f"}, {65, "31f 3t 31f"}, {150, "74f 3t 73f"}});
    expectAcross("TrRowSplit", 0.5, {{9, "2f 5tf 2f"}});
    expectRows("TrRowSplit", {3, 8, 19}, 0.5, {{1, "3f |7f"}, {2, "3tf |7f"}});
    for (const char* const function : {"TrRowSplit", "TrColSplit"}) expectAcross(function, 1, {{1, "1f"}});
}

TEST(Merges, KeepAnEvenBandOfRowsButAnOddOneOfColumns) {
    expectAcross("TrRowMerge", 0.75,
                 {{64, "64t"}, {65, "31t 2f 32t"}, {150, "74t 2f 74t"}, {151, "73t 4f 74t"}});
    expectAcross("TrColMerge", 0.75,
                 {{64, "64t"}, {65, "32t 1f 32t"}, {150, "75t 1f 74t"}, {151, "74t 3f 74t"}});
    expectAcross("TrRowMerge", 0, {{8, "8f"}});
    expectAcross("TrColMerge", 0, {{8, "1t 7f"}, {9, "1t 7f 1t"}});
    expectRows("TrRowMerge", {2, 9, 13}, 0, {{0, "2f |5f"}, {7, "2f |5f"}, {8, "2t |5t"}});
}

TEST(CrossSplit, OpensAnEvenBarOfColumnsAndAnOddOneOfRows) {
    constexpr auto bar = "73f 4t 74f |8f", whole = "151t |8t";
    expectRows("TrCrossSplit", {151, 64, 612}, 0.25, {{31, bar}, {32, bar}});
    expectRows("TrCrossSplit", {151, 100, 612}, 0.25, {{48, bar}, {49, whole}, {50, bar}});
    expectRows("TrCrossSplit", {151, 151, 612}, 0.25, {{73, bar}, {74, whole}, {76, whole}, {77, bar}});
    // The last column of odd widths ends up with the bar of rows alone.
    expectRows("TrCrossSplit", {5, 4, 24}, 1, {{0, "5t |4t"}, {2, "5t |4t"}, {3, "4t 1f |4f"}});
    expectRows("TrCrossSplit", {5, 5, 20}, 1, {{0, "4t 1f"}, {1, "5t"}, {3, "5t"}, {4, "4t 1f"}});
}

// Linear: 8 of 10 rows are left at one quarter, then 5.
TEST(CrossMerge, KeepsAnOddCrossAboutAMiddleRoundedUp) {
    expectRows("TrCrossMerge", {11, 10, 51}, 0.5, {{3, "4tf 5f 2tf |7f"}, {4, "11f |7f"}, {6, "11f |7f"}});
    expectColumns("TrCrossMerge", {11, 10, 44}, 0.25, {{2, "2tf 7f 1tf"}, {3, "10f"}});
    expectRows("TrCrossMerge", {4, 4, 16}, 0, {{0, "1tf 3f"}, {1, "4f"}});
    expectRows("TrCrossMerge", {5, 5, 20}, 0, {{1, "2tf 3f"}, {2, "5f"}});
}
