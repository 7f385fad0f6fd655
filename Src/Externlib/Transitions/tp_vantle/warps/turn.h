/// A scaled picture turned about the centre of the frame: where its pixels come from.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "frame/rounding.h"

namespace vantle {

/// Columns or rows `first` to `end` - 1.
struct Span {
    std::int32_t first, end;
    bool empty() const { return first >= end; }
};

/// One dimension of the scaled picture, upright and centred in the frame.
struct Extent {
    std::int32_t size, first, end;
    float scale;
    Extent(std::int32_t frameSize, float shownScale)
        : size(frameSize),
          first((size - truncated(static_cast<float>(size) * shownScale)) >> 1),
          end(first + truncated(static_cast<float>(size) * shownScale)),
          scale(shownScale) {}

    std::int32_t clampedIn(double at) const { return std::clamp(static_cast<std::int32_t>(at), 0, size - 1); }

    /// The frame's own row or column that is shown at `at`, which lies inside.
    std::int32_t sourceOf(std::int32_t at) const {
        return std::min(static_cast<std::int32_t>(static_cast<float>(at - first) / scale), size - 1);
    }
};

/// Where the pixels of one row lie before the turn, by their distance from the centre column.
struct TurnedRow {
    double cosine, sine;
    double column, row;  // of the pixel in the centre column; the row without the centre's
    double centreRow;

    double columnAt(double dx) const { return cosine * dx + column; }
    double rowAt(double dx) const { return row - sine * dx + centreRow; }
};

/// A turn, clockwise as it is seen.
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

/// What a square block of the output shows is put together in a patch first, upright: a turned row crosses as
/// many rows of memory as it has pixels, and in a patch they are at hand. Its rows are an odd number of the
/// cache's lines apart: what lies below each other would else fall into the same few places of the cache.
constexpr std::int32_t patchSide = 112;

/// Where a pixel lies in a patch, seen from the pixel `column` columns left of and `row` rows above it.
constexpr std::ptrdiff_t placeOf(std::int32_t column, std::int32_t row) {
    return column + std::ptrdiff_t{patchSide} * row;
}

/// The side of the largest block that never shows more than a patch. Whole halves of lines are faster.
std::int32_t blockSize(const Turn& turn);

/// The part of the upright picture that a block shows.
struct Part {
    Span columns, rows;
    std::int32_t first[patchSide], end[patchSide];  ///< of each row, the columns that are needed
    std::int32_t sourceColumns[patchSide], sourceRows[patchSide];  ///< the frame's, of each column and row

    std::int32_t rowCount() const { return rows.end - rows.first; }
    std::ptrdiff_t place() const { return placeOf(columns.first, rows.first); }
};

/// Finds the part that the block of `size` columns and rows from column `left` and row `top` on shows.
void findPart(Part& part, const Extent& across, const Extent& down, const Turn& turn, std::int32_t left,
              std::int32_t top, std::int32_t size);

/// Where pixels side by side lie in a patch, whatever their row.
struct Steps {
    std::ptrdiff_t first;          ///< of the first, from the row's pixel in the centre column
    std::int32_t each[patchSide];  ///< of all, from the first
    bool exact;  ///< false where one depends on the row: so little short of a whole number that it may be
                 ///< rounded
};

/// Finds them for the pixels `dx`, `dx` + 1, ... from the centre column.
void findSteps(Steps& steps, const Turn& turn, std::int32_t dx, std::int32_t count);

/// places[i] = where in the patch of `part` the pixel `dx` + i from the centre column of a row lies.
void findPlaces(std::int32_t* places, const Part& part, const TurnedRow& turned, std::int32_t dx,
                std::int32_t count);

}  // namespace vantle
