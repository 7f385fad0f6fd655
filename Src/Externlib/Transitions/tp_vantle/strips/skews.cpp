// Skews: a band along one of the diagonals, with soft edges 80 pixels wide, opens with the incoming frame or
// closes with the outgoing one. All is decided by a pixel's distance from the diagonal, along its row.
#include <algorithm>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

constexpr std::int32_t edge = 80;

enum class Diagonal { falling, rising };
enum class Zone { kept, full };

/// How the incoming frame's weight depends on the distance from the diagonal: one zone up to `start`, then
/// the soft edge, then the other zone.
struct Profile {
    Zone inner;
    Zone outer;
    std::int32_t start;
    std::int32_t length;
    Weight weights[edge + 1];  // of the soft edge, by distance from its start

    template <typename WeightAt>
    Profile(Zone innerZone, Zone outerZone, std::int32_t first, std::int32_t end, WeightAt weightAt)
        : inner(innerZone), outer(outerZone), start(std::max(first, 0)), length(std::max(end - start, 0)) {
        for (std::int32_t i = 0; i < length; ++i) weights[i] = static_cast<Weight>(weightAt(start + i));
    }
};

/// The front has travelled `front` of width + 80 pixels; the soft edge lies before it, or while the front is
/// in the picture `inset` further in.
Profile splitProfile(std::int32_t width, std::int32_t front, std::int32_t inset) {
    if (front <= width) {
        const std::int32_t end = front - inset;
        return {Zone::full, Zone::kept, end - edge, end,
                [=](std::int32_t distance) { return 255 * (end - distance) / edge; }};
    }
    // The far corner is reached: the edge is compressed into what is left before it.
    const std::int32_t left = width + edge - front;
    return {Zone::full, Zone::kept, width - left + 1, width,
            [=](std::int32_t distance) { return 255 * (width - distance) / left; }};
}

/// The front has `front` of width + 80 pixels left to travel; the soft edge lies behind it.
Profile mergeProfile(std::int32_t front) {
    if (front >= edge) {
        const std::int32_t first = front - edge;
        return {Zone::kept, Zone::full, first, front + 1,
                [=](std::int32_t distance) { return 255 * (distance - first) / edge; }};
    }
    return {Zone::kept, Zone::full, 0, front, [=](std::int32_t distance) { return 255 * distance / front; }};
}

void draw(const Stage& stage, Diagonal diagonal, Writes writes, const Profile& profile) {
    const std::int32_t width = stage.width();
    const float slant = static_cast<float>(width) / static_cast<float>(stage.height());
    // The soft edge as it stands left of the diagonal, where columns run toward it.
    Weight mirrored[edge + 1];
    std::reverse_copy(profile.weights, profile.weights + profile.length, mirrored);
    const auto zone = [&](Row& row, Zone which, std::int32_t end) {
        if (which == Zone::full)
            row.mix(255, end, Division::by256);
        else
            row.from(end);
    };
    for (Row row : stage.rows(writes)) {
        const std::int32_t along = truncated(static_cast<float>(row.y()) * slant);
        const std::int32_t centre = diagonal == Diagonal::falling ? along : width - 1 - along;
        const std::int32_t start = profile.start;
        const std::int32_t end = profile.start + profile.length;
        zone(row, profile.outer, centre - end + 1);
        // The pixel on the diagonal itself is drawn with the right half.
        row.mix(Columns<Weight>{mirrored, centre - end + 1}, std::min(centre - start + 1, centre),
                Division::by256);
        zone(row, profile.inner, centre + start);
        row.mix(Columns<Weight>{profile.weights, centre + start}, centre + end, Division::by256);
        zone(row, profile.outer, width);
        row.fromRest();
    }
}

}  // namespace

/// "Skew_left_split": along the falling diagonal, eased.
void skewRightSplit(const Stage& stage, const Progress& progress) {
    const std::int32_t front = progress.easedSize(stage.width() + edge);
    draw(stage, Diagonal::falling, Writes::coloursOverFrom, splitProfile(stage.width(), front, 0));
}

/// "Skew_right_split": along the rising diagonal, linear, its edge 80 pixels further in, all four bytes.
void skewLeftSplit(const Stage& stage, const Progress& progress) {
    const std::int32_t front = progress.linearSize(stage.width() + edge);
    draw(stage, Diagonal::rising, Writes::pixels, splitProfile(stage.width(), front, edge));
}

/// Along the falling diagonal.
void skewLeftMerge(const Stage& stage, const Progress& progress) {
    const std::int32_t front = progress.easedRemainder(stage.width() + edge);
    draw(stage, Diagonal::falling, Writes::coloursOverFrom, mergeProfile(front));
}

/// Along the rising diagonal.
void skewRightMerge(const Stage& stage, const Progress& progress) {
    const std::int32_t front = progress.easedRemainder(stage.width() + edge);
    draw(stage, Diagonal::rising, Writes::coloursOverFrom, mergeProfile(front));
}

}  // namespace vantle
