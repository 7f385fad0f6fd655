/// What the plain rules have in common.
#pragma once

#include <cmath>

#include "plain_rules.h"

namespace tests {

inline int truncated(double value) { return static_cast<int>(value); }
inline int rounded(double value) { return static_cast<int>(value + 0.5); }

/// The position after both easings, in the same units: 0 to `duration`.
inline double eased(double position, double duration) {
    constexpr double turn = 6.283185307179586;
    const double p = position - std::sin(position * turn / duration) * duration / turn;
    return (3 * duration * p * p - 2 * p * p * p) / (duration * duration);
}

/// Blends the first `bytes` bytes of a pixel by the weight of imgTo.
template <int bytes>
void mix(const std::uint8_t* from, const std::uint8_t* to, std::uint8_t* out, int weight) {
    for (int i = 0; i < bytes; ++i)
        out[i] = static_cast<std::uint8_t>(from[i] * (255 - weight) / 255 + to[i] * weight / 255);
}

inline constexpr int untouched = -1;

/// Calls `draw(x, y, offset)` for every pixel of a scene.
template <typename Draw>
void forEachPixel(const Scene& s, const Draw& draw) {
    for (int y = 0; y < s.geometry.height; ++y)
        for (int x = 0; x < s.geometry.width; ++x) draw(x, y, s.offsetOf(x, y));
}

/// Puts `count` bytes of a picture row, from its byte `first` on, into `out`.
inline void copyRow(const Scene& s, const Bytes& source, int y, Bytes& out, int first, int count) {
    const auto start = static_cast<std::ptrdiff_t>(s.offsetOf(0, y)) + first;
    std::copy_n(source.begin() + start, count, out.begin() + start);
}

/// `under` with the pixels (x, y) blended by `weightAt(x, y)`, where that is not `untouched`.
template <typename WeightAt>
Bytes blended(const Scene& s, Bytes under, const WeightAt& weightAt, decltype(&mix<3>) mixPixel = mix<3>) {
    forEachPixel(s, [&](int x, int y, std::size_t at) {
        if (const int weight = weightAt(x, y); weight != untouched)
            mixPixel(&s.from[at], &s.to[at], &under[at], weight);
    });
    return under;
}

}  // namespace tests
