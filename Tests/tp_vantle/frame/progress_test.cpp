// The eased size that most transitions draw with, seen as the width that TrRowVantle opens in its top row.
#include "frames.h"

using namespace tests;

// By hand: a quarter is eased to 1/4 - 1/(2 pi) = 0.090845, then to 0.023259: 55.496 and 55.519 here.
TEST(Progress, IsEasedBySineThenByCubicAndRounded) {
    expectRows("TrRowVantle", {2386, 1, 9544}, 0.25, {{0, "55t 2331f"}});
    expectRows("TrRowVantle", {2387, 1, 9548}, 0.25, {{0, "56t 2331f"}});
}
