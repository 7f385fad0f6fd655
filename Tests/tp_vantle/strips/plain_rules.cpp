#include "plain_drawing.h"

namespace tests {

namespace {

constexpr int shownIf(bool shown) { return shown ? 255 : untouched; }

// A size's share of what is behind after both easings, and of what is left.
int opened(int size, double position, double duration) {
    return rounded(size * eased(position, duration) / duration);
}
int left(int size, double position, double duration) {
    return rounded((duration - eased(position, duration)) * size / duration);
}

// Whole rows and bands are of bytes: the right bands end where the padding does.
Bytes rowVantle(const Scene& s, double position, double duration) {
    const auto [w, h, pitch] = s.geometry;
    const int count = 4 * opened(w, position, duration), band = std::max(truncated(10 * h / 320.0), 1);
    Bytes out = s.from;
    for (int y = 0; y < h; ++y) copyRow(s, s.to, y, out, y / band % 2 == 0 ? 0 : pitch - count, count);
    return out;
}

Bytes colVantle(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, h = s.geometry.height;
    const int band = std::max(static_cast<int>(static_cast<float>(10 * w) / 640.0F), 1);
    const double t = position / duration, square = t * t;
    const int rows = rounded((3 * square - 2 * (t * square)) * h);
    const auto weight = [=](int x, int y) { return (x / band % 2 == 0 ? y : h - 1 - y) < rows ? 255 : 0; };
    return blended(s, s.before, weight, mix<4>);
}

Bytes crossVantle(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, h = s.geometry.height;
    const int columns = opened(w, position, duration), rows = opened(h, position, duration);
    const auto weight = [=](int x, int y) {
        return shownIf((y % 20 < 10 ? x : w - 1 - x) < columns || (x % 20 < 10 ? y : h - 1 - y) < rows);
    };
    return blended(s, s.from, weight, mix<4>);
}

template <bool columns>
Bytes shutter(const Scene& s, double position, double duration) {
    const int size = 30 * (columns ? s.geometry.width : s.geometry.height);
    const int period = std::max(truncated(size / (columns ? 640.0 : 360.0)), 1);
    const int open = truncated(position / duration * period);
    return blended(s, s.from, [=](int x, int y) { return shownIf((columns ? x : y) % period < open); });
}

template <bool either>
Bytes crossShutter(const Scene& s, double position, double duration) {
    const int tenth = truncated(s.geometry.height * 0.1), period = std::max(tenth + tenth % 2, 2);
    const int open = truncated(position / duration * period) / 2 * 2;
    const auto weight = [=](int x, int y) {
        const bool down = y % period < open, across = x % period < open;
        return shownIf(either ? down || across : down && across);
    };
    return blended(s, s.from, weight, mix<4>);
}

// Eight slats, four on each side of the edge, are shaded and black where they are thin.
Bytes blind(const Scene& s, double position, double duration) {
    constexpr double shades[] = {0.9, 0.8, 0.7, 0.6, 0.6, 0.7, 0.8, 0.9};
    const int slat = truncated(s.geometry.width * 20.0 / 640.0);
    const double way = (s.geometry.width + 8 * slat) * eased(position, duration) / duration;
    const int first = truncated(way - 8 * slat);
    Bytes out = blended(
        s, s.before, [=](int x, int) { return x > first + 4 * slat ? 0 : 255; }, mix<4>);
    for (int i = 0; i < 8; ++i)
        for (int j = 0, x = first + i * slat; j < slat; ++j, ++x) {
            const double open = shades[i] * slat;
            const bool black = i < 4 ? j >= open : slat - open >= j;
            for (int y = 0; y < s.geometry.height && x >= 0 && x < s.geometry.width; ++y)
                for (std::size_t at = s.offsetOf(x, y), end = at + 3; at < end; ++at)
                    out[at] = static_cast<std::uint8_t>(black ? 0 : truncated(out[at] * shades[i]));
        }
    return out;
}

// Rows lose their byte 3, columns do not.
template <bool columns>
Bytes split(const Scene& s, double position, double duration) {
    const int size = columns ? s.geometry.width : s.geometry.height, middle = size / 2;
    const int half = opened(size, position, duration) / 2;
    const auto weight = [=](int x, int y) {
        return shownIf(half != 0 && std::abs((columns ? x : y) - middle) <= half);
    };
    return blended(s, s.from, weight, columns ? mix<4> : mix<3>);
}

Bytes rowMerge(const Scene& s, double position, double duration) {
    const int h = s.geometry.height, half = left(h, position, duration) / 2;
    Bytes out = s.to;
    for (int y = h / 2 - half; y < h / 2 + half; ++y) copyRow(s, s.from, y, out, 0, s.geometry.pitch);
    return out;
}

Bytes colMerge(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, half = left(w, position, duration) / 2;
    return blended(
        s, s.from, [=](int x, int) { return shownIf(std::abs(x - w / 2) >= half); }, mix<4>);
}

Bytes crossSplit(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, h = s.geometry.height, middle = h - 1 - h / 2;
    const int columns = opened(w, position, duration) / 2, rows = opened(h, position, duration) / 2;
    const auto weight = [=](int x, int) { return shownIf(x >= w / 2 - columns && x < w / 2 + columns); };
    Bytes out = blended(s, s.from, weight, mix<4>);
    for (int y = middle - rows + 1; y < middle + rows; ++y) copyRow(s, s.to, y, out, 0, s.geometry.pitch);
    return out;
}

Bytes crossMerge(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, h = s.geometry.height;
    const int rows = rounded((duration - position) * h / duration) / 2, cy = rounded(0.5 * h);
    const int columns = rounded((duration - position) * w / duration) / 2, cx = rounded(0.5 * w);
    return blended(s, s.from, [=](int x, int y) {
        return shownIf(std::abs(y - cy) >= rows && std::abs(x - cx) >= columns);
    });
}

// 0 at the centre, 255 at the edges.
int outward(int distance, int size) { return truncated(2 * (distance / static_cast<double>(size)) * 255.0); }

Bytes rowSplit2(const Scene& s, double position, double duration) {
    const int h = s.geometry.height;
    const double e = eased(position, duration), c = e / duration;
    const int half = rounded(c < 0.5 ? e * h / duration : (1 - c) * h);
    return blended(s, s.before, [=](int, int y) {
        const int distance = std::abs(y - h / 2);
        return half != 0 && distance <= half ? outward(distance, h) : c < 0.5 ? 0 : 255;
    });
}

template <int bytes>
void mixIn256ths(const std::uint8_t* from, const std::uint8_t* to, std::uint8_t* out, int weight) {
    for (int i = 0; i < bytes; ++i)
        out[i] = static_cast<std::uint8_t>((from[i] * (255 - weight) >> 8) + (to[i] * weight >> 8));
}

Bytes colSplit2(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, middle = w / 2;
    const double c = eased(position, duration) / duration;
    const int half = truncated(w * (c < 0.5 ? c : 1 - c));
    const auto weight = [=](int x, int) {
        if (x < middle - half || x >= middle + half) return untouched;
        return x < middle ? 255 - 510 * x / w : 510 * (x - middle) / w;
    };
    return blended(s, c < 0.5 ? s.from : s.to, weight, mixIn256ths<3>);
}

Bytes crossSplit2(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, h = s.geometry.height;
    const double t = position / duration;
    const auto half = [=](int size) {
        return rounded(t < 0.5 ? size * position / duration : size * (1 - t));
    };
    const int rows = half(h), columns = half(w);
    return blended(s, s.before, [=](int x, int y) {
        const int across = std::abs(x - w / 2), down = std::abs(y - h / 2);
        if (down >= rows && across >= columns) return t < 0.5 ? 0 : 255;
        return (outward(across, w) + outward(down, h)) / 2;
    });
}

// Along the row.
template <bool rising>
int fromDiagonal(const Geometry& g, int x, int y) {
    const float slant = static_cast<float>(g.width) / static_cast<float>(g.height);
    return std::abs((rising ? g.width - 1 - x : x) - static_cast<int>(static_cast<float>(y) * slant));
}

template <bool linear>
Bytes skewSplit(const Scene& s, double position, double duration) {
    const int w = s.geometry.width, way = w + 80;
    const int front = linear ? rounded(way * position / duration) : opened(way, position, duration);
    const auto weight = [&](int x, int y) {
        const int distance = fromDiagonal<linear>(s.geometry, x, y), rest = way - front;
        if (front > w) return w - distance >= rest ? 255 : 255 * (w - distance) / rest;
        const int depth = front - (linear ? 80 : 0) - distance;
        return depth <= 0 ? untouched : depth > 80 ? 255 : 255 * depth / 80;
    };
    return blended(s, s.from, weight, linear ? mixIn256ths<4> : mixIn256ths<3>);
}

template <bool rising>
Bytes skewMerge(const Scene& s, double position, double duration) {
    const int front = left(s.geometry.width + 80, position, duration);
    const auto weight = [&](int x, int y) {
        const int distance = fromDiagonal<rising>(s.geometry, x, y), beyond = distance - (front - 80);
        if (front < 80) return distance >= front ? 255 : 255 * distance / front;
        return beyond < 0 ? untouched : beyond > 80 ? 255 : 255 * beyond / 80;
    };
    return blended(s, s.from, weight, mixIn256ths<3>);
}

// The falls of the bands, laid end to end: each falls as far as the pile lets it.
Bytes deposit(const Scene& s, double position, double duration) {
    const int h = s.geometry.height, tenth = truncated(0.1 * h), band = std::max(tenth + tenth % 2, 2);
    int way = 0, pile = h;
    for (int fall = h; fall > 0; fall -= band) way += fall;
    int fallen = opened(way, position, duration);
    for (; fallen > pile; pile -= band) fallen -= pile;
    return blended(s, s.from,
                   [=](int, int y) { return shownIf((y >= fallen - band && y < fallen) || y >= pile); });
}

constexpr PlainRule strips[] = {
    {"TrRowVantle", rowVantle},
    {"TrColVantle", colVantle, {0.75}},
    {"TrCrossVantle", crossVantle},
    {"TrVerShutter", shutter<true>},
    {"TrHorShutter", shutter<false>},
    {"TrCrossShutter1", crossShutter<true>},
    {"TrCrossShutter2", crossShutter<false>},
    {"TrBlind", blind},
    {"TrRowSplit", split<false>},
    {"TrColSplit", split<true>},
    {"TrRowMerge", rowMerge},
    {"TrColMerge", colMerge},
    {"TrCrossSplit", crossSplit},
    {"TrCrossMerge", crossMerge},
    {"TrRowSplit2", rowSplit2},
    {"TrColSplit2", colSplit2},
    {"TrCrossSplit2", crossSplit2},
    {"TrSkewLeftSplit", skewSplit<true>},
    {"TrSkewRightSplit", skewSplit<false>},
    {"TrSkewLeftMerge", skewMerge<false>},
    {"TrSkewRightMerge", skewMerge<true>},
    {"TrDepositUp", deposit},
};

}  // namespace

std::span<const PlainRule> stripRules() { return strips; }

}  // namespace tests
