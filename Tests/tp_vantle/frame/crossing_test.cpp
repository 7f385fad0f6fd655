#include "frame/crossing.h"

#include <gtest/gtest.h>

namespace vantle {
namespace {

TEST(Crossing, IsFoundFromAnyGuess) {
    constexpr std::int32_t first = 3, end = 40;
    for (std::int32_t edge = first; edge <= end; ++edge)
        for (std::int32_t guess = -5; guess < 50; ++guess) {
            const auto beyond = [&](std::int32_t x) {
                EXPECT_TRUE(x >= first && x < end) << "asked for column " << x;
                return x >= edge;
            };
            ASSERT_EQ(crossing(first, end, guess, beyond), edge) << "from " << guess;
        }
}

}  // namespace
}  // namespace vantle
