#include <gtest/gtest.h>

#include "effects.h"
#include "frame/pixels/run.h"
#include "frames.h"

namespace vantle {
namespace {

// However far apart samples are, no pixel is read before the first or after the last of them.
TEST(Samples, AreGatheredFromWithinTheirRow) {
    for (const std::int32_t width : {1, 7, 15, 16, 17, 64, 200})
        for (const double step : {0.0, 0.05, 0.3, 0.95, 1.0, 1.1, 1.9, 2.0, 2.15, 3.0, 7.0})
            for (const tests::Guard guard : {tests::Guard::before, tests::Guard::after}) {
                const tests::Bytes row = tests::contentOf({width, 1, 4 * width}, 0);
                const auto pixels = tests::guarded(row, guard, PROT_READ);
                std::vector<std::int32_t> columns;
                for (std::int32_t i = 0; i < 150 && i * step <= width - 1; ++i)
                    columns.push_back(static_cast<std::int32_t>(
                        guard == tests::Guard::before ? i * step : width - 1 - i * step));
                if (guard == tests::Guard::after) std::reverse(columns.begin(), columns.end());
                const auto count = static_cast<std::int32_t>(columns.size());
                std::vector<std::uint32_t> gathered(columns.size());
                tests::forEachLevel([&] {
                    gather(gathered.data(), pixels.get(), columns.data(), count);
                    for (std::size_t i = 0; i < columns.size(); ++i)
                        ASSERT_EQ(
                            std::memcmp(&gathered[i], &row[4 * static_cast<std::size_t>(columns[i])], 4), 0)
                            << "sample " << i << " of " << count << ", width " << width << ", step " << step;
                });
            }
}

}  // namespace
}  // namespace vantle
