#include "plain_drawing.h"

namespace tests {

namespace {

double diagonal(const Geometry& g) { return std::sqrt(g.width * g.width + g.height * g.height); }

// Squared, to the pixel right of and below the middle; at odd sizes that is not the middle pixel.
int distanceSquared(const Geometry& g, int x, int y) {
    const int u = x - (g.width + 1) / 2, v = y - (g.height + 1) / 2;
    return u * u + v * v;
}

void takeDarker(const std::uint8_t*, const std::uint8_t* to, std::uint8_t* out, int) {
    for (int i = 0; i < 3; ++i) out[i] = static_cast<std::uint8_t>(to[i] - (to[i] > 0));
}

// The one keeps imgFrom in a rectangle and shows imgTo darkened around it, the other shows imgTo in one.
template <bool in>
Bytes rectZoom(const Scene& s, double position, double duration) {
    const auto [w, h, pitch] = s.geometry;
    const double size = in ? duration - position : position;
    const int halfWidth = rounded(size * w / duration) / 2, halfHeight = rounded(size * h / duration) / 2;
    const int cx = (in ? w + 1 : w) / 2, cy = (in ? h + 1 : h) / 2;
    const auto weight = [=](int x, int y) {
        return (std::abs(y - cy) < halfHeight && std::abs(x - cx) < halfWidth) != in ? 255 : untouched;
    };
    return blended(s, s.from, weight, in ? takeDarker : mix<3>);
}

void mixFourInSingle(const std::uint8_t* from, const std::uint8_t* to, std::uint8_t* out, int weight) {
    const auto toward = static_cast<float>(weight), away = 255 - toward;
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<std::uint8_t>(to[i] * toward / 255 + from[i] * away / 255);
}

template <bool in>
Bytes roundZoom(const Scene& s, double position, double duration) {
    const double share = in ? position / duration : (duration - position) / duration;
    const int radius = truncated((diagonal(s.geometry) * 0.5 + 0.5 + 100.0) * share);
    const auto weight = [&s, radius](int x, int y) {
        const int square = distanceSquared(s.geometry, x, y);
        if (square > radius * radius) return untouched;
        const int inside = std::clamp((radius - truncated(std::sqrt(square))) * 255 / 100, 0, 255);
        return in ? inside : 255 - inside;
    };
    return blended(s, in ? s.from : s.to, weight, in ? mixFourInSingle : mix<3>);
}

Bytes roundZoomIn2(const Scene& s, double position, double duration) {
    const double t = position / duration, scale = rounded(diagonal(s.geometry) * 0.5);
    const int limit = truncated((diagonal(s.geometry) + 0.5) * (t < 0.5 ? t : 1 - t));
    return blended(s, s.before, [&](int x, int y) {
        const int distance = rounded(std::sqrt(distanceSquared(s.geometry, x, y)));
        return distance < limit ? truncated(distance / scale * 255.0) : t < 0.5 ? 0 : 255;
    });
}

// The diamond is of imgFrom in the one, of imgTo in the other.
template <bool in>
Bytes diamondZoom(const Scene& s, double position, double duration) {
    const double e = eased(position, duration);
    const int w = s.geometry.width, middle = s.geometry.height / 2, cx = (w + 1) / 2;
    const double aspect = static_cast<double>(s.geometry.height - middle) / cx;
    const int reach = rounded(w * (in ? (duration - e) / duration : e / duration));
    const auto weight = [=](int x, int y) {
        const int half = rounded((reach - std::abs(x - cx)) * aspect);
        return (reach >= w || (y >= middle - half && y < middle + half)) != in ? 255 : 0;
    };
    return blended(s, (reach >= w) == in ? s.from : s.to, weight, mix<4>);
}

// The squares are of imgTo in the one, of imgFrom in the other. Frames below ten rows have cells of two.
template <bool in>
Bytes gridZoom(const Scene& s, double position, double duration) {
    const double t = position / duration;
    if (in ? t < 0.001 : t > 0.999) return in ? s.from : s.to;
    const int h = s.geometry.height, tenth = static_cast<int>(h * 0.1), cell = std::max(tenth + tenth % 2, 2);
    const int side = static_cast<int>(in ? t * cell : cell * ((duration - position) / duration));
    const int low = (cell - (in ? side + side % 2 : side - side % 2)) / 2;
    const auto within = [=](int phase) { return phase >= low && phase <= cell - low; };
    return blended(s, s.from, [=](int x, int y) {
        return (within(x % cell) && within((h - 1 - y) % cell)) == in ? 255 : untouched;
    });
}

Bytes cirqueZoom(const Scene& s, double position, double duration) {
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

/// The angle of a pixel, clockwise from straight up.
double angle(double u, double v) {
    constexpr double tiny = 1e-07;
    if (u >= 0) return v >= 0 ? std::atan(v / (u + tiny)) + 1.57079632675 : std::atan(-u / (v + tiny));
    return v >= 0 ? 3.1415926535 - std::atan(u / (v + tiny)) : std::atan(v / (u + tiny)) + 4.71238898025;
}

template <bool clockwise>
Bytes sweep(const Scene& s, double position, double duration) {
    constexpr double soft = 0.157079632675, turn = 6.283185307, travel = turn + soft;
    const double passed = eased(position, duration) / duration * travel;
    const double hand = clockwise ? passed : turn - passed;
    return blended(s, s.from, [&](int x, int y) {
        const double at = angle(x - s.geometry.width / 2, y - s.geometry.height / 2);
        const double behind = clockwise ? hand - at : at - hand;
        if (clockwise && hand > turn)
            return at > hand - soft && at < turn ? truncated((turn - at) * 255.0 / (travel - hand)) : 255;
        if (!clockwise && hand <= 0)
            return at > 0 && at < hand + soft ? truncated(at * 255.0 / (hand + soft)) : 255;
        if (clockwise ? at >= hand : at < hand) return untouched;
        return behind >= soft ? 255 : truncated(behind * 255.0 / soft);
    });
}

Bytes pinwheel(const Scene& s, double position, double duration) {
    const double opened = eased(position, duration) * 3.141592653589793 / (duration + duration);
    const auto weight = [&s, opened](int x, int y) {
        const double u = x - s.geometry.width / 2, v = y - s.geometry.height / 2;
        const bool fromVertical = (v < 0 && u <= 0) || (v > 0 && u >= 0);
        const double ratio = fromVertical ? std::abs(u) / std::abs(v) : std::abs(v) / std::abs(u);
        return opened >= 0.01 && opened > (u == 0 && v == 0 ? 0 : std::atan(ratio)) ? 255 : 0;
    };
    return blended(s, s.from, weight, mix<4>);
}

// Single precision throughout. Byte 3 and the padding are never written.
Bytes zoom(const Scene& s, double position, double duration) {
    const Geometry& g = s.geometry;
    Bytes out = blended(s, s.before, [](int, int) { return 255; });
    if (position == duration) return out;
    const auto t = static_cast<float>(position / duration), opacity = std::min(3 * t, 1.0F);
    const auto along = [](int at, int size, float scale) {
        return static_cast<int>(static_cast<float>(at - size / 2) / scale + static_cast<float>(size / 2));
    };
    const auto source = [&](int x, int y, float scale) {
        return s.offsetOf(along(x, g.width, scale), along(y, g.height, scale));
    };
    const auto within = [t](int at, int size) {
        return std::abs(at - size / 2) < static_cast<int>(static_cast<float>(size) * t) / 2;
    };
    for (int y = 0; y < g.height; ++y)
        for (int x = 0; x < g.width; ++x)
            for (std::size_t i = 0; i < 3; ++i) {
                float byte = s.from[source(x, y, 20 * t + 1) + i];
                if (within(x, g.width) && within(y, g.height) && static_cast<float>(g.width) * t >= 6)
                    byte = s.to[source(x, y, t) + i] * opacity + byte * (1 - opacity);
                out[s.offsetOf(x, y) + i] = static_cast<std::uint8_t>(byte);
            }
    return out;
}

constexpr PlainRule shapes[] = {
    {"TrRectZoomIn", rectZoom<true>},
    {"TrRectZoomOut", rectZoom<false>, {1}, 0, 3},
    {"TrRoundZoomIn", roundZoom<true>, {0.9}},
    {"TrRoundZoomOut", roundZoom<false>, {0.1}},
    {"TrRoundZoomIn2", roundZoomIn2},
    {"TrDiamondZoomIn", diamondZoom<true>},
    {"TrDiamondZoomOut", diamondZoom<false>},
    {"TrGridZoomIn", gridZoom<true>},
    {"TrGridZoomOut", gridZoom<false>},
    {"TrCirqueZoomIn", cirqueZoom, {0.999}},
    // The soft edge begins to be squeezed, and ends on a pixel right of the centre, left of it, up and left.
    {"TrSweepClockwise",
     sweep<true>,
     {0.7477582334787556, 0.41826449763937423, 0.5916336292443983, 0.6519861437381266}},
    {"TrSweepAntiClockwise",
     sweep<false>,
     {0.7477582334787556, 0.5916336356911052, 0.4182645037997431, 0.3622619888145901}},
    // A cross opens; and a blade's edge is so near a pixel that its angle alone tells, and not its tangent.
    {"TrWind", pinwheel, {0.19731639847568477, 0.64970691486130094}},
    {"TrZoom", zoom, {0.06}},
};

}  // namespace

std::span<const PlainRule> shapeRules() { return shapes; }

}  // namespace tests
