#include "frame/pixels/turned.h"

#include <algorithm>

#include "frame/pixels/processor.h"

namespace vantle {

VANTLE_MULTIVERSION void findSources(std::int32_t* sources, std::int32_t first, std::int32_t count,
                                     float scale, std::int32_t size) {
    for (std::int32_t i = 0; i < count; ++i)
        sources[i] = std::min(static_cast<std::int32_t>(static_cast<float>(first + i) / scale), size - 1);
}

VANTLE_MULTIVERSION void findSteps(Steps& steps, const Turn& turn, std::int32_t dx, std::int32_t count) {
    // More than a double is off by near the largest coordinate.
    constexpr double margin = 1e-6;
    const double cosine = turn.cosine, sine = turn.sine;
    const auto firstColumn = static_cast<std::int32_t>(std::floor(cosine * dx));
    const auto firstRow = static_cast<std::int32_t>(std::floor(-(sine * dx)));
    double highest = 0.0;
    for (std::int32_t i = 0; i < count; ++i) {
        const double across = cosine * (dx + i);
        const double down = -(sine * (dx + i));
        const double column = std::floor(across);
        const double row = std::floor(down);
        highest = std::max(highest, std::max(across - column, down - row));
        steps.each[i] = static_cast<std::int32_t>(column) - firstColumn +
                        patchSide * (static_cast<std::int32_t>(row) - firstRow);
    }
    steps.first = placeOf(firstColumn, firstRow);
    steps.exact = highest < 1.0 - margin;
}

VANTLE_MULTIVERSION void findPlaces(std::int32_t* places, const TurnedRow& turned, std::int32_t column,
                                    std::int32_t row, std::int32_t dx, std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i)
        places[i] = static_cast<std::int32_t>(turned.columnAt(dx + i)) - column +
                    patchSide * (static_cast<std::int32_t>(turned.rowAt(dx + i)) - row);
}

}  // namespace vantle
