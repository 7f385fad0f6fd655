// Shutters: the incoming frame opens through slats that all widen at the same time, linearly.
#include "frame/columns.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// Slats repeat every `period` pixels; the first `open` of each show the incoming frame.
struct Slats {
    std::int32_t period;
    std::int32_t open;
    bool opens(std::int32_t coordinate) const { return coordinate % period < open; }
};

/// `share` of the frame's size as the period, at least one pixel.
Slats wideSlats(double period, const Progress& progress) {
    const std::int32_t size = std::max(truncated(period), 1);
    return {size, truncated(progress.linear() * size)};
}

/// Even periods of a tenth of the height, opening by two pixels at a time.
Slats evenSlats(std::int32_t height, const Progress& progress) {
    const std::int32_t size = evenTenth(height);
    return {size, truncated(progress.linear() * size) & ~1};
}

}  // namespace

/// Vertical slats. Byte 3 stays that of the outgoing frame.
void verShutter(const Stage& stage, const Progress& progress) {
    const Slats slats = wideSlats(30.0 * stage.width() / 640.0, progress);
    PerColumn opens([=](std::int32_t x) { return slats.opens(x); });
    for (Row row : stage.rows(Writes::coloursOverFrom)) row.choose(opens(row), stage.width()).fromRest();
}

/// Horizontal slats. Byte 3 stays that of the outgoing frame.
void horShutter(const Stage& stage, const Progress& progress) {
    const Slats slats = wideSlats(30.0 * stage.height() / 360.0, progress);
    for (Row row : stage.rows(Writes::coloursOverFrom))
        row.showRest(slats.opens(row.y()) ? Source::to : Source::from);
}

/// Slats in both directions: whole pixels of the incoming frame in either.
void crossShutter1(const Stage& stage, const Progress& progress) {
    const Slats slats = evenSlats(stage.height(), progress);
    PerColumn opens([=](std::int32_t x) { return slats.opens(x); });
    for (Row row : stage.rows(Writes::pixels)) {
        if (slats.opens(row.y())) row.to(stage.width());
        row.choose(opens(row), stage.width()).fromRest();
    }
}

/// Growing squares: whole pixels of the incoming frame where slats in both directions meet.
void crossShutter2(const Stage& stage, const Progress& progress) {
    const Slats slats = evenSlats(stage.height(), progress);
    PerColumn opens([=](std::int32_t x) { return slats.opens(x); });
    for (Row row : stage.rows(Writes::pixels)) {
        if (slats.opens(row.y())) row.choose(opens(row), stage.width());
        row.fromRest();
    }
}

}  // namespace vantle
