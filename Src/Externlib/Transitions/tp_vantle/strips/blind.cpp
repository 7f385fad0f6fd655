// Blind: a wipe from left to right whose edge is a band of eight shaded slats, four on each side of it.
#include <cmath>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

constexpr double factors[] = {0.9, 0.8, 0.7, 0.6, 0.6, 0.7, 0.8, 0.9};
constexpr Shade shades[] = {Shade{factors[0]}, Shade{factors[1]}, Shade{factors[2]}, Shade{factors[3]},
                            Shade{factors[4]}, Shade{factors[5]}, Shade{factors[6]}, Shade{factors[7]}};

}  // namespace

/// Byte 3 and the padding are not shaded and not written, respectively.
void blind(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const std::int32_t slat = truncated(width * 20.0 / 640.0);
    const std::int32_t start = truncated(progress.easedPart(width + 8 * slat) - 8 * slat);
    const std::int32_t middle = start + 4 * slat;
    for (Row row : stage.rows(Writes::pixels)) {
        row.to(start);
        // On the left of the edge each slat ends in a black gap, on the right it starts with one.
        for (std::int32_t i = 0; i < 4; ++i) {
            const auto gap = static_cast<std::int32_t>(std::ceil(factors[i] * slat));
            row.shade(Source::to, shades[i], start + i * slat + gap);
            row.shade(Source::to, black, start + (i + 1) * slat);
        }
        // The first column on the right still belongs to the incoming frame.
        if (slat > 0)
            row.shade(Source::to, black, middle + 1);
        else
            row.to(middle + 1);
        for (std::int32_t i = 4; i < 8; ++i) {
            const auto gap = static_cast<std::int32_t>(std::floor(slat - factors[i] * slat)) + 1;
            row.shade(Source::from, black, start + i * slat + gap);
            row.shade(Source::from, shades[i], start + (i + 1) * slat);
        }
        row.from(width);
    }
}

}  // namespace vantle
