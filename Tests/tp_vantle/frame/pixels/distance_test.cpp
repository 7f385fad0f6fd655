#include "frame/pixels/distance.h"

#include <gtest/gtest.h>

#include "effects.h"

namespace vantle {
namespace {

// Single-precision roots come to lie on the wrong side of a distance only far out.
TEST(Distance, IsRoundedRightlyWhereverTheRootLiesClose) {
    const DistanceTable table(1 << 15, [](std::int32_t distance) { return distance % 251; });
    const std::int32_t rows[] = {0, 1, 90, 127, 128, 1080, 9001, 23169};
    for (const std::int32_t dy : rows)
        for (const std::int32_t start : {-23169, -4106, -17, 0, 2040, 8000, 16384, 22913}) {
            constexpr std::int32_t count = 257, band = 3;
            Weight nearest[band][count], truncated[band][count];
            tests::forEachLevel([&] {
                weightsByDistance(*nearest, count, band, start, dy, count, DistanceRounding::nearest, table);
                weightsByDistance(*truncated, count, band, start, dy, count, DistanceRounding::truncated,
                                  table);
                for (std::int32_t i = 0; i < band * count; ++i) {
                    const std::int64_t dx = start + i % count;
                    const std::int64_t down = dy + i / count;
                    const std::int64_t square = dx * dx + down * down;
                    const std::int32_t whole = wholeRoot(square);
                    const bool up = square > std::int64_t{whole} * whole + whole;
                    ASSERT_EQ(truncated[i / count][i % count], whole % 251) << dx << ", " << down;
                    ASSERT_EQ(nearest[i / count][i % count], (whole + (up ? 1 : 0)) % 251)
                        << dx << ", " << down;
                }
            });
        }
}

}  // namespace
}  // namespace vantle
