// Rolls: a straight edge about the bottom left corner turns through a quarter turn and uncovers the incoming
// frame behind it, softly. When the edge has left the picture, the rest of the softness fades out against
// the side where it left.
#include <cmath>

#include "frame/progress.h"
#include "frame/soft_edge.h"
#include "frame/stage.h"

namespace vantle {

namespace {

// The shortened values are part of the rule.
constexpr double travel = 1.727875959425;
constexpr double quarterTurn = 1.57079632675;
constexpr double softWidth = 0.157079632675;

/// The edge, in angles from the side on which it starts, which pixels are given by their tangents.
struct Edge {
    explicit Edge(double turned)
        : turnedBy(turned),
          tangent(std::tan(turned)),
          angle(std::atan(tangent)),
          leaving(turned > quarterTurn),
          origin(leaving ? quarterTurn : angle),
          width(leaving ? travel - turned : softWidth) {}

    Zone zoneOf(double ratio) const {
        if (leaving)
            return turnedBy >= travel || std::atan(ratio) <= turnedBy - softWidth ? Zone::full : Zone::soft;
        if (!(tangent > ratio)) return Zone::kept;
        return angle - std::atan(ratio) <= softWidth ? Zone::soft : Zone::full;
    }
    double share(double ratio) const { return std::max((origin - std::atan(ratio)) * 255.0 / width, 0.0); }

    double turnedBy;
    double tangent;
    double angle;
    bool leaving;
    double origin;
    double width;
};

/// Draws the edge seen as a ray at `angle` clockwise from the upward vertical; `tangentOf(x, up)` is a
/// pixel's tangent, `up` rows above the line below the picture.
template <typename TangentOf>
void draw(const Stage& stage, const Edge& edge, double angle, double scale, Writes writes,
          TangentOf tangentOf) {
    const Ray ray{.column = 0,
                  .row = stage.height(),
                  .sine = std::sin(angle),
                  .cosine = std::cos(angle),
                  .scale = scale,
                  .tolerance = 1e-9};
    for (Row row : stage.rows(writes)) {
        const auto tangentAt = [&](std::int32_t x) {
            return tangentOf(static_cast<double>(x), static_cast<double>(stage.height() - row.y()));
        };
        drawSoftEdge(
            row, stage.width(), ray, [&](std::int32_t x) { return edge.zoneOf(tangentAt(x)); },
            [&](std::int32_t x) { return edge.share(tangentAt(x)); });
        row.fromRest();
    }
}

}  // namespace

/// From the left side to the bottom, all bytes.
void rollClockwise(const Stage& stage, const Progress& progress) {
    const Edge edge(travel * progress.unbounded().eased());
    draw(stage, edge, edge.origin, -255.0 / edge.width, Writes::pixels,
         [](double x, double up) { return x / up; });
}

/// From the bottom to the left side; byte 3 stays. The left column is beyond that side and comes last.
void rollAntiClockwise(const Stage& stage, const Progress& progress) {
    const Edge edge(travel * progress.unbounded().eased());
    draw(stage, edge, quarterTurn - edge.origin, 255.0 / edge.width, Writes::coloursOverFrom,
         [](double x, double up) { return up / x; });
}

}  // namespace vantle
