#include "plain_drawing.h"

namespace tests {

namespace {

// The ramp lies along the rows or the columns, but is as long as half the width in both.
template <bool down>
Bytes linearWipe(const Scene& s, double position, double duration) {
    constexpr double turn = 6.283185307179586;
    double u = eased(position, duration) / duration;
    if (u < 0.5) {
        const double v = static_cast<float>(u - std::sin(u * turn) / turn);
        u = 3 * v * v + -2 * v * v * v;
    }
    const int w = s.geometry.width;
    const float p = static_cast<float>(u) * 1.5F;
    const auto start = static_cast<float>(w * (p - 0.5)), end = static_cast<float>(w) * p;
    Bytes out = s.from;
    forEachPixel(s, [&](int x, int y, std::size_t at) {
        const float along = (static_cast<float>(down ? y : x) - start) / (end - start);
        for (std::size_t i = at; i < at + 4; ++i) {
            const auto difference = static_cast<float>(s.from[i] - s.to[i]);
            out[i] = static_cast<std::uint8_t>(difference * std::clamp(along, 0.0F, 1.0F) + s.to[i]);
        }
    });
    return out;
}

constexpr PlainRule blends[] = {
    // The ramp ends at a quarter of the width: on a pixel, and many bytes of the others are whole.
    {"TrLinearWipeUpDown", linearWipe<true>, {0.4570084954884587}},
    {"TrLinearWipeLeftRight", linearWipe<false>, {0.4570084954884587}},
};

}  // namespace

std::span<const PlainRule> blendRules() { return blends; }

}  // namespace tests
