/// A turn about the centre of a frame: where its pixels come from.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "frame/rounding.h"

namespace vantle {

/// Where the pixels of one row lie before the turn, by their distance from the centre column.
struct TurnedRow {
    double cosine, sine;
    double column, row;  // of the pixel in the centre column; the row without the centre's
    double centreRow;

    double columnAt(double dx) const { return cosine * dx + column; }
    double rowAt(double dx) const { return row - sine * dx + centreRow; }
};

/// A turn, clockwise as it is seen. Coordinates are truncated twice.
struct Turn {
    double cosine, sine;
    std::int32_t centreColumn, centreRow;

    TurnedRow row(std::int32_t y) const {
        const double dy = y - centreRow;
        return {cosine, sine, static_cast<double>(truncated(sine * dy + centreColumn)),
                static_cast<double>(truncated(cosine * dy)), static_cast<double>(centreRow)};
    }

    /// How many times its own side the upright square is that a turned one fits.
    double growth() const { return std::abs(cosine) + std::abs(sine); }
};

/// Side of the patch in which what a square block of the output shows is put together upright: a turned row
/// crosses as many rows of memory as it has pixels, and in a patch these are in the L1 cache. An odd number
/// of cache lines, so that rows below each other do not fall into the same few sets of the cache.
constexpr std::int32_t patchSide = 112;

/// Where a pixel lies in a patch, seen from the pixel `column` columns left of and `row` rows above it.
constexpr std::ptrdiff_t placeOf(std::int32_t column, std::int32_t row) {
    return column + std::ptrdiff_t{patchSide} * row;
}

/// sources[i] = where in a frame of `size` pixels lies what is shown at `first` + i of it, `scale` times as
/// large.
void findSources(std::int32_t* sources, std::int32_t first, std::int32_t count, float scale,
                 std::int32_t size);

/// Where pixels side by side lie in a patch, whatever their row.
struct Steps {
    std::ptrdiff_t first;          ///< of the first, from the row's pixel in the centre column
    std::int32_t each[patchSide];  ///< of all, from the first
    bool exact;  ///< false where one depends on the row: so little short of a whole number that it may be
                 ///< rounded
};

/// Finds them for the pixels `dx`, `dx` + 1, ... from the centre column.
void findSteps(Steps& steps, const Turn& turn, std::int32_t dx, std::int32_t count);

/// places[i] = where in a patch whose first pixel is (column, row) the pixel `dx` + i from the centre column
/// lies.
void findPlaces(std::int32_t* places, const TurnedRow& turned, std::int32_t column, std::int32_t row,
                std::int32_t dx, std::int32_t count);

}  // namespace vantle
