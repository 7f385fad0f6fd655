#include "plain_rule.h"

using namespace tests;

static Bytes cirqueZoom(const Scene& s, double position, double duration) {
    const double t = position / duration, most = diagonal(s.geometry) * 0.5 + 0.5;
    if (t > 0.999) return s.to;
    const double unit = truncated(most) / 120.0, odd = (duration - position) * 255.0 / duration;
    return blended(s, s.from, [&, radius = truncated(most * t)](int x, int y) {
        const int square = distanceSquared(s.geometry, x, y);
        if (square > radius * radius) return untouched;
        const int depth = radius - rounded(std::sqrt(square));
        for (int ring = 0, bound = 15; ring < 15; bound += 14 - ring++)
            if (const int end = rounded(bound * unit * t); depth < end) {
                const auto relative = static_cast<float>(static_cast<double>(depth) / end);
                return ring % 2 == 0 ? truncated(relative * 255.0F) : 255 - truncated(relative * odd);
            }
        return 255 - truncated(std::nextafter(1.0F, 0.0F) * odd);
    });
}

TEST(CirqueZoom, FollowsItsRulePixelByPixel) { expectRule("TrCirqueZoomIn", cirqueZoom, 0.999); }

// The radius is 200, rings end at the depths 25, 48, 70 ... 198 and 200; the odd ones weigh imgFrom by half.
TEST(CirqueZoom, WeighsTheRingsInTurn) {
    const auto columns = {521, 520, 519, 496, 144, 495, 473, 472, 451, 321, 320};
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.5, 240, columns),
              " 0 0 10 244 244 189 131 174 251 253 128");
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.5, 240, {495, 451}, 3), " 0 0");
}

// The ninth ring ends just short of 115.5. 30/36 of 204 is 170, but less in single precision.
TEST(CirqueZoom, KeepsTheOrderAndThePrecisionOfItsOperations) {
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 7, 240, {345}, 0, 20), " 99");
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 2, 240, {370}, 0, 10), " 86");
}

// At 0.006 the radius is 2 and the first ring empty: the rim lies in the second, the centre in none. At 0 the
// disc is the centre, whose share of imgFrom is just below 255.
TEST(CirqueZoom, StartsWithEmptyRingsAndShowsImgToPastTheLast) {
    EXPECT_EQ(weights("TrCirqueZoomIn", 640, 480, 0.006, 240, {323, 322, 320}), " 0 255 2");
    EXPECT_EQ(weights("TrCirqueZoomIn", 9, 9, 0, 5, {4, 5, 6}), " 0 1 0");
    expectRows("TrCirqueZoomIn", {9, 9, 40}, 0.9991, {{0, "9t |4t"}, {5, "9t |4t"}});
}
