// Row cosines: the incoming frame advances behind half a cosine wave that is furthest ahead in the top row,
// in bands of four rows from the left and from the right in turn.
#include <cmath>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

constexpr double halfTurn = 3.1415926535;  // shortened: part of the rule

/// How many rows the wave spans and how many columns the top row has advanced.
struct Wave {
    std::int32_t rows;
    std::int32_t columns;

    Wave(const Stage& stage, double eased)
        : rows(truncated(stage.height() * eased + stage.height() * eased)),
          columns(truncated(stage.width() * eased + stage.width() * eased)) {}

    std::int32_t advanceAt(double angle) const { return truncated((std::cos(angle) + 1) * columns * 0.5); }
};

bool entersFromLeft(const Row& row) { return (row.y() & 4) == 0; }

}  // namespace

/// A wipe; byte 3 stays.
void rowCosVantle(const Stage& stage, const Progress& progress) {
    const Wave wave(stage, progress.eased());
    const std::int32_t width = stage.width();
    for (Row row : stage.rows(Writes::coloursOverFrom)) {
        if (row.y() < wave.rows) {
            const std::int32_t advance = wave.advanceAt(static_cast<double>(row.y()) / wave.rows * halfTurn);
            if (entersFromLeft(row))
                row.to(advance);
            else
                row.from(width - advance).to(width);
        }
        row.fromRest();
    }
}

/// The rows of the incoming frame slide in, their leading ends first.
void rowCosSlide(const Stage& stage, const Progress& progress) {
    const Wave wave(stage, progress.eased());
    const std::int32_t width = stage.width();
    const double step = halfTurn / wave.rows;
    for (Row row : stage.rows(Writes::pixels)) {
        if (row.y() < wave.rows) {
            const std::int32_t advance = wave.advanceAt(row.y() * step);
            if (advance >= width)
                row.toRest();
            else if (entersFromLeft(row))
                row.moved(row, Source::to, width - advance, advance);
            else
                row.from(width - advance).moved(row, Source::to, advance - width, width);
        }
        row.fromRest();
    }
}

}  // namespace vantle
