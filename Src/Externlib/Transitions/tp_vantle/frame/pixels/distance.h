/// Distances of pixels from a point, as weights.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "frame/pixels/lookup.h"
#include "frame/pixels/run.h"

namespace vantle {

enum class DistanceRounding : std::uint8_t { truncated, nearest };

/// Weights that depend on the distance alone, worked out once for distances 0 to `count` - 1. Those beyond
/// the table, which only frames of more than 2^31 squared pixels of diagonal have, weigh as its last. Kept as
/// bytes: it lies on the stack, and hosts draw in threads with small ones.
class DistanceTable {
   public:
    template <typename WeightAt>
    DistanceTable(std::int32_t count, WeightAt weightAt) : last_(std::clamp(count, 1, size) - 1) {
        for (std::int32_t distance = 0; distance <= last_; ++distance)
            weights_[distance] = static_cast<std::uint8_t>(weightAt(distance));
    }
    std::int32_t last() const { return last_; }

    const std::uint8_t* weights() const { return weights_; }

   private:
    static constexpr std::int32_t size = 1 << 15;
    std::int32_t last_;
    std::uint8_t weights_[size + nearBytes];  // looked up as many at a time
};

/// weights[stride * row + i] = the table's weight for the whole distance of the point (dx + i, dy + row) from
/// the origin, for `count` points of each of some rows; of more than one only where `dy` is not negative.
void weightsByDistance(Weight* weights, std::ptrdiff_t stride, std::int32_t rows, std::int32_t dx,
                       std::int32_t dy, std::int32_t count, DistanceRounding rounding,
                       const DistanceTable& table);

/// mirrored[i] = weights[count - 1 - i].
void mirror(Weight* mirrored, const Weight* weights, std::int32_t count);

/// The largest whole number whose square is at most `square`; -1 for a negative one.
std::int32_t wholeRoot(std::int64_t square);

}  // namespace vantle
