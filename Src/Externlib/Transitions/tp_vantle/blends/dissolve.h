/// Dissolve: the pixels of the incoming frame come one by one in a random order, which stays the same while
/// the geometry does.
#pragma once

#include <cstdint>

namespace vantle {

class Progress;
class Stage;

/// A dissolve with its order, which its caller keeps from frame to frame. Its calls must not overlap.
class Dissolve {
   public:
    Dissolve() = default;
    Dissolve(const Dissolve&) = delete;
    Dissolve& operator=(const Dissolve&) = delete;
    ~Dissolve() { delete[] mask; }

    /// Makes an order for frames of this geometry, none of it negative, unless the one at hand is for it.
    /// `seeded()` gives the source of random numbers, a function; it is called for a new order only. Throws
    /// std::bad_alloc when the order finds no memory; then there is none, and the next call tries again.
    template <typename Seeded>
    void fit(std::int32_t width, std::int32_t height, std::int32_t pitch, Seeded seeded) {
        if (mask != nullptr && mask_y_pitch == pitch && mask_height == height && maskCount == width * height)
            return;
        renew(width, height, pitch);
        auto random = seeded();
        for (auto m = static_cast<std::uint32_t>(maskCount); m >= 1; --m)
            mask[m - 1] = static_cast<std::uint32_t>(random()) % m;
        settle();
    }

    /// Draws frames of the geometry that `fit` was last called with; whole pixels.
    void draw(const Stage& stage, const Progress& progress);

   private:
    void renew(std::int32_t width, std::int32_t height, std::int32_t pitch);
    void settle();

    std::uint32_t* mask = nullptr;  // the rank of each pixel in the order, by rows as memory holds them
    std::int32_t maskCount = 0;
    std::int32_t curCountOfMask = 0;  // pixels of imgTo shown by the latest call
    std::int32_t mask_y_pitch = 0;
    std::int32_t mask_height = 0;
};

}  // namespace vantle
