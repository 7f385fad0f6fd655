#include "frames.h"

using namespace tests;

// A band is a tenth of the height, rounded up to even. At one half half of all falls is behind: with bands
// of 10 in 100 rows 275 of 550, where three of 100, 90 and 80 have ended.
TEST(DepositUp, PilesUpBandsThatFallOneAfterAnother) {
    const auto expect = [](std::int32_t height, double position, const char* runs) {
        expectColumns("TrDepositUp", {2, height, 8}, position, {{1, runs}});
    };
    expect(100, 0.5, "5tf 65f 30tf");
    expect(100, 0.497, "70f 30tf");         // 270
    expect(100, 0.4976, "1tf 69f 30tf");    // 271
    expect(100, 0.25, "3f 10tf 87f");       // 12.79
    expect(96, 0.5, "63f 10tf 3f 20tf");    // 73 of the third fall's 76
    expect(109, 0.5, "18f 10tf 51f 30tf");  // 28 of the fourth fall
    expect(10, 0.5, "3f 2tf 3f 2tf");       // of 2
    expect(9, 0.5, "2f 2tf 3f 2tf");        // and still
}
