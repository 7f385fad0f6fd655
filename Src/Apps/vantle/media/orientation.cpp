#include "media/orientation.h"

extern "C" {
#include <libavutil/display.h>
}

#include <cmath>

namespace vantle {

Orientation orientationOf(const DisplayMatrix& matrix) {
    const double degrees = av_display_rotation_get(matrix.data());
    const int turns = std::isfinite(degrees) ? static_cast<int>(std::lround(-degrees / 90.0)) & 3 : 0;
    const auto at = [&](std::size_t i) { return static_cast<double>(matrix.at(i)); };
    return {turns, at(0) * at(4) - at(1) * at(3) < 0.0};
}

DisplayMatrix matrixOf(Orientation orientation) {
    constexpr std::int32_t one = 1 << 16;
    constexpr std::array<std::int32_t, 4> cosines{one, 0, -one, 0};
    const auto turns = static_cast<std::size_t>(orientation.quarterTurns);
    const std::int32_t cosine = cosines.at(turns);
    const std::int32_t sine = cosines.at((turns + 3) & 3);
    const int side = orientation.mirrored ? -1 : 1;
    return {cosine, sine, 0, -side * sine, side * cosine, 0, 0, 0, 1 << 30};
}

Orientation inTurn(Orientation first, Orientation second) {
    // A mirrored picture is turned the other way round.
    const int turns = second.mirrored ? -first.quarterTurns : first.quarterTurns;
    return {(second.quarterTurns + turns) & 3, first.mirrored != second.mirrored};
}

Orientation inverse(Orientation orientation) {
    // What mirrors a picture is undone by itself.
    return orientation.mirrored ? orientation : Orientation{-orientation.quarterTurns & 3, false};
}

std::vector<Filter> upright(Orientation orientation) {
    const auto [turns, mirrored] = orientation;
    if (turns % 2 != 0) {
        const char* const mirroring = turns == 1 ? "cclock_flip" : "clock_flip";
        const char* const turning = turns == 1 ? "clock" : "cclock";
        return {{"transpose", {{"dir", mirrored ? mirroring : turning}}}};
    }
    if (mirrored) return {{turns == 0 ? "vflip" : "hflip"}};
    return turns == 0 ? std::vector<Filter>{} : std::vector<Filter>{{"hflip"}, {"vflip"}};
}

}  // namespace vantle
