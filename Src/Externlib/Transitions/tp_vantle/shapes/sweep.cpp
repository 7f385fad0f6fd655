// Sweeps: a hand about the centre turns once round from 12 o'clock and uncovers the incoming frame behind it,
// with a soft edge. When the hand has come round, what is left of the edge is squeezed in before 12 o'clock.
#include <algorithm>
#include <cmath>

#include "frame/progress.h"
#include "frame/soft_edge.h"
#include "frame/stage.h"

namespace vantle {

namespace {

// Angles clockwise from the upward vertical. The shortened values are part of the rule.
constexpr double softWidth = 0.157079632675;
constexpr double fullTurn = 6.283185307;
constexpr double travel = 6.440264939675;
constexpr double quarterTurn = 1.57079632675;
constexpr double halfTurn = 3.1415926535;
constexpr double threeQuarters = 4.71238898025;

/// The angle of a pixel `u` columns right of and `v` rows below the centre.
double angleOf(double u, double v) {
    constexpr double neverZero = 1e-07;
    if (u >= 0.0)
        return v >= 0.0 ? std::atan(v / (u + neverZero)) + quarterTurn : std::atan(-u / (v + neverZero));
    return v >= 0.0 ? halfTurn - std::atan(u / (v + neverZero))
                    : std::atan(v / (u + neverZero)) + threeQuarters;
}

/// Pixels whose angle lies between two limits are soft, in the order in which the hand passes them: `share`
/// of 255 for the incoming frame is their angle's distance from `origin`.
struct Clockwise {
    explicit Clockwise(double hand)
        : closing(hand > fullTurn),
          origin(closing ? fullTurn : hand),
          first(hand - softWidth),
          width(closing ? travel - hand : softWidth) {}

    Zone zoneOf(double angle) const {
        if (closing) return angle > first && angle < fullTurn ? Zone::soft : Zone::full;
        if (angle >= origin) return Zone::kept;
        return origin - angle >= softWidth ? Zone::full : Zone::soft;
    }
    double share(double angle) const { return (origin - angle) * 255.0 / width; }
    double scale() const { return -255.0 / width; }

    bool closing;
    double origin;
    double first;
    double width;
};

struct AntiClockwise {
    explicit AntiClockwise(double hand)
        : closing(hand <= 0.0), origin(closing ? 0.0 : hand), width(closing ? hand + softWidth : softWidth) {}

    Zone zoneOf(double angle) const {
        if (closing) return angle > 0.0 && angle < width ? Zone::soft : Zone::full;
        if (angle < origin) return Zone::kept;
        return angle - origin >= softWidth ? Zone::full : Zone::soft;
    }
    double share(double angle) const { return (angle - origin) * 255.0 / width; }
    double scale() const { return 255.0 / width; }

    bool closing;
    double origin;
    double width;
};

template <typename Hand>
void draw(const Stage& stage, const Hand& hand) {
    const std::int32_t width = stage.width();
    const Ray ray{.column = width / 2,
                  .row = stage.height() / 2,
                  .sine = std::sin(hand.origin),
                  .cosine = std::cos(hand.origin),
                  .scale = hand.scale(),
                  .tolerance = 3e-7};  // the rule's own divisors are off by 1e-7
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        const std::int32_t v = row.y() - ray.row;
        const auto angleAt = [=](std::int32_t x) { return angleOf(x - ray.column, v); };
        const auto drawSector = [&](std::int32_t end) {
            drawSoftEdge(
                row, end, ray, [&](std::int32_t x) { return hand.zoneOf(angleAt(x)); },
                [&](std::int32_t x) { return hand.share(angleAt(x)); });
        };
        drawSector(ray.column);
        // Straight up is where the turn starts and ends: a zone of its own.
        if (v < 0) drawSector(std::min(ray.column + 1, width));
        drawSector(width);
        row.fromRest();
    }
}

}  // namespace

/// Byte 3 stays.
void sweepClockwise(const Stage& stage, const Progress& progress) {
    draw(stage, Clockwise(progress.eased() * travel));
}

/// Byte 3 stays.
void sweepAntiClockwise(const Stage& stage, const Progress& progress) {
    draw(stage, AntiClockwise(fullTurn - progress.eased() * travel));
}

}  // namespace vantle
