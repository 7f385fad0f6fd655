/// The plug-in's pictures held against those of plain rules, drawn pixel by pixel.
#pragma once

#include <cmath>
#include <random>

#include "frames.h"

namespace tests {

inline int truncated(double value) { return static_cast<int>(value); }
inline int rounded(double value) { return static_cast<int>(value + 0.5); }
inline double diagonal(const Geometry& g) { return std::sqrt(g.width * g.width + g.height * g.height); }

/// The position after both easings, in the same units: 0 to `duration`.
inline double eased(double position, double duration) {
    constexpr double turn = 6.283185307179586;
    const double p = position - std::sin(position * turn / duration) * duration / turn;
    return (3 * duration * p * p - 2 * p * p * p) / (duration * duration);
}

/// Squared, to the pixel right of and below the middle; at odd sizes that is not the middle pixel.
inline int distanceSquared(const Geometry& g, int x, int y) {
    const int u = x - (g.width + 1) / 2, v = y - (g.height + 1) / 2;
    return u * u + v * v;
}

/// The offset of the pixel in picture column `x` and picture row `y`.
inline std::size_t offsetOf(const Geometry& g, int x, int y) {
    return static_cast<std::size_t>((g.height - 1 - y) * g.pitch + 4 * x);
}

/// Blends the first `bytes` bytes of a pixel by the weight of imgTo.
template <int bytes>
void mix(const std::uint8_t* from, const std::uint8_t* to, std::uint8_t* out, int weight) {
    for (int i = 0; i < bytes; ++i)
        out[i] = static_cast<std::uint8_t>(from[i] * (255 - weight) / 255 + to[i] * weight / 255);
}

constexpr int untouched = -1;

/// `under` with the pixels (x, y) blended by `weightAt(x, y)`, where that is not `untouched`.
template <typename WeightAt>
Bytes blended(const Scene& s, Bytes under, const WeightAt& weightAt, decltype(&mix<3>) mixPixel = mix<3>) {
    for (int y = 0; y < s.geometry.height; ++y)
        for (int x = 0; x < s.geometry.width; ++x)
            if (const int weight = weightAt(x, y); weight != untouched) {
                const std::size_t at = offsetOf(s.geometry, x, y);
                mixPixel(&s.from[at], &s.to[at], &under[at], weight);
            }
    return under;
}

/// Expects every byte that a transition leaves in its output to be as `rule(scene, position, duration)` has
/// it, in some thousand frames: at both ends, at and near `moment`, at ties of rounding and at random, from
/// `low` to `high` durations.
template <typename Rule>
void expectRule(const char* function, const Rule& rule, double moment = 0.5, double low = 0,
                double high = 1) {
    constexpr Geometry large[] = {{641, 360, 0}, {97, 250, 0}, {5600, 102, 0}, {8203, 3, 0}};
    std::mt19937 random(7);
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto part = [&below](int parts) { return below(parts) / static_cast<double>(parts); };
    for (int i = 0; i < 400; ++i) {
        Geometry g{1 + below(1 + below(64)), 1 + below(1 + below(64)), 0};
        if (i % 100 == 0) g = large[i / 100];
        g.pitch = 4 * g.width + below(2) * below(20);
        Scene scene(g, i % 2 == 0 ? Guard::before : Guard::after);
        const int frames = 1 + below(100);
        for (const double t : {0.0, 1e-9, 0.001, 1 / 3.0, 0.999, 1 - 1e-9, 1.0, moment,
                               moment + (part(1 << 20) - 0.5) / 300, part(frames), part(2 * g.width),
                               part(2 * g.height), low + (high - low) * part(1 << 20), part(1 << 20)}) {
            const double duration = std::array{1.0, 0.7, frames / 1.0}[random() % 3];
            const Bytes expected = rule(scene, t * duration, duration);
            const Bytes& out = scene.draw(transition(function), t * duration, duration).out;
            const auto at = std::mismatch(out.begin(), out.end(), expected.begin()).first - out.begin();
            ASSERT_EQ(at, std::ssize(out)) << function << " at " << t << " of " << duration << ", " << g.width
                                           << "x" << g.height << ", pitch " << g.pitch;
        }
    }
}

/// One byte of some pixels of row `y`, drawn over 77s from an imgFrom of 0 only and an imgTo of 255 only: of
/// a blended pixel, the weight of imgTo.
inline std::string weights(const char* function, int w, int h, double position, int y,
                           std::initializer_list<int> columns, int byte = 0, double duration = 1) {
    Scene scene({w, h, 4 * w}, Pixel{0, 0, 0, 0}, Pixel{255, 255, 255, 255});
    scene.before.assign(scene.before.size(), 77);
    scene.draw(transition(function), position, duration);
    std::string text;
    for (const int x : columns) (text += ' ') += std::to_string(scene.value(x, y, byte));
    return text;
}

}  // namespace tests
