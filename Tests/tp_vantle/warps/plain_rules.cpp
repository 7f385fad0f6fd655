#include "plain_drawing.h"

namespace tests {

namespace {

template <bool clockwise>
Bytes roll(const Scene& s, double position, double duration) {
    constexpr double travel = 1.727875959425, quarter = 1.57079632675, soft = 0.157079632675;
    const double turned = travel * (eased(position, duration) / duration), tangent = std::tan(turned);
    const auto weight = [&](int x, int y) {
        const double across = x, up = s.geometry.height - y;
        const double ratio = clockwise ? across / up : up / across, angle = std::atan(ratio);
        if (turned > quarter) {
            if (turned >= travel || angle <= turned - soft) return 255;
            return std::max(truncated((quarter - angle) * 255 / (travel - turned)), 0);
        }
        if (!(tangent > ratio)) return untouched;
        const double behind = std::atan(tangent) - angle;
        return behind <= soft ? truncated(behind * 255 / soft) : 255;
    };
    return blended(s, s.from, weight, clockwise ? mix<4> : mix<3>);
}

Bytes twirl(const Scene& s, double position, double duration) {
    const auto [w, h, pitch] = s.geometry;
    const double half = duration * 0.5;
    if (position == duration) return s.to;
    const bool first = duration > position + position, middle = duration == position + position;
    const double passed = first ? position : position - half, grown = first ? half - position : passed;
    const double angle = (passed / half + passed / half) * 3.141592653589793;
    const auto k = static_cast<float>(grown * 0.949999988079071 / half + 0.05000000074505806);
    const int shownWidth = static_cast<int>(static_cast<float>(w) * k), left = (w - shownWidth) >> 1;
    const int shownHeight = static_cast<int>(static_cast<float>(h) * k), top = (h - shownHeight) >> 1;
    const double c = std::cos(angle), sine = std::sin(angle);
    Bytes out = s.before;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double dx = x - (w >> 1), dy = y - (h >> 1);
            const int a = truncated(c * dy), b = truncated(sine * dy + (w >> 1));
            const int sx = std::clamp(truncated(c * dx + b), 0, w - 1);
            const int sy = std::clamp(truncated(a - sine * dx + (h >> 1)), 0, h - 1);
            std::uint8_t* const pixel = &out[s.offsetOf(x, y)];
            if (!middle && sx > left && sx < left + shownWidth && sy > top && sy < top + shownHeight) {
                const int u = static_cast<int>(static_cast<float>(sx - left) / k);
                const int v = static_cast<int>(static_cast<float>(sy - top) / k);
                std::memcpy(pixel, &(first ? s.from : s.to)[s.offsetOf(u, v)], 4);
            } else {
                std::memset(pixel, 0, 3);
            }
        }
    return out;
}

// Whole pixels, of rows counted from the bottom.
Bytes topple(const Scene& s, double position, double duration) {
    const int h = s.geometry.height, slid = truncated(h * (eased(position, duration) / duration));
    Bytes out = s.before;
    forEachPixel(s, [&](int x, int y, std::size_t at) {
        const bool of = y < slid;
        const int up = of ? slid - 1 - y : h * (h - 1 - y) / (h - slid);
        std::memcpy(&out[at], &(of ? s.to : s.from)[s.offsetOf(x, h - 1 - up)], 4);
    });
    return out;
}

template <bool slides>
Bytes rowCosine(const Scene& s, double position, double duration) {
    constexpr double halfTurn = 3.1415926535;
    const auto [w, h, pitch] = s.geometry;
    const double c = eased(position, duration) / duration;
    const int rows = truncated(h * c + h * c), columns = truncated(w * c + w * c);
    Bytes out = s.from;
    for (int y = 0; y < std::min(rows, h); ++y) {
        const double phase = slides ? y * (halfTurn / rows) : static_cast<double>(y) / rows * halfTurn;
        const int advance = truncated((std::cos(phase) + 1) * columns * 0.5), n = std::min(advance, w);
        const int shownAt = (y & 4) != 0 ? w - n : 0;  // in from the right, or from the left
        if (slides && advance >= w) copyRow(s, s.to, y, out, 0, s.geometry.pitch);
        for (int x = shownAt; x < shownAt + n; ++x)
            if (slides)
                std::memcpy(&out[s.offsetOf(x, y)],
                            &s.to[s.offsetOf(shownAt > 0 ? x - shownAt : x + w - n, y)], 4);
            else
                std::memcpy(&out[s.offsetOf(x, y)], &s.to[s.offsetOf(x, y)], 3);
    }
    return out;
}

constexpr PlainRule warps[] = {
    // The edge leaves the picture, and its soft part ends on pixels at an eighth of a turn and beyond; at
    // last on one
    // where the share of what is soft would round to one less.
    {"TrRollClockwise",
     roll<true>,
     {0.6730827249126458, 0.5151816409497323, 0.6799158056530729, 0.71016914106253015},
     -3,
     3},
    {"TrRollAntiClockwise",
     roll<false>,
     {0.6730827249126458, 0.5151816409497323, 0.6799158056530729, 0.71016914106253015},
     -3,
     3},
    {"TrTwrl", twirl, {0.01}},
    {"TrTopple", topple},
    {"TrRowCosVantle", rowCosine<false>},
    {"TrRowCosSlide", rowCosine<true>},
};

}  // namespace

std::span<const PlainRule> warpRules() { return warps; }

}  // namespace tests
