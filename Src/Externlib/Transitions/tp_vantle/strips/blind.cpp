// Blind: a wipe from left to right whose edge is a band of eight shaded slats, four on each side of it.
#include <cmath>

#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

constexpr double shades[] = {0.9, 0.8, 0.7, 0.6, 0.6, 0.7, 0.8, 0.9};

/// Every byte times a factor, truncated: looked up because no integer arithmetic gives 0.7 * 90 = 62.
constexpr ByteTable shadedBy(double factor) {
    ByteTable table{};
    for (std::size_t value = 0; value < table.size(); ++value)
        table[value] = static_cast<std::uint8_t>(static_cast<double>(value) * factor);
    return table;
}

constexpr ByteTable shadeTables[] = {shadedBy(shades[0]), shadedBy(shades[1]), shadedBy(shades[2]),
                                     shadedBy(shades[3]), shadedBy(shades[4]), shadedBy(shades[5]),
                                     shadedBy(shades[6]), shadedBy(shades[7])};
constexpr ByteTable black{};

}  // namespace

/// Byte 3 and the padding are not shaded and not written, respectively.
void blind(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const std::int32_t slat = truncated(width * 20.0 / 640.0);
    const std::int32_t start = truncated(progress.easedPart(width + 8 * slat) - 8 * slat);
    const std::int32_t middle = start + 4 * slat;
    for (Row row : stage.rows()) {
        row.to(start);
        // On the left of the edge each slat ends in a black gap, on the right it starts with one.
        for (std::int32_t i = 0; i < 4; ++i) {
            const auto gap = static_cast<std::int32_t>(std::ceil(shades[i] * slat));
            row.lookedUp(Source::to, shadeTables[i], start + i * slat + gap);
            row.lookedUp(Source::to, black, start + (i + 1) * slat);
        }
        // The first column on the right still belongs to the incoming frame.
        if (slat > 0)
            row.lookedUp(Source::to, black, middle + 1);
        else
            row.to(middle + 1);
        for (std::int32_t i = 4; i < 8; ++i) {
            const auto gap = static_cast<std::int32_t>(std::floor(slat - shades[i] * slat)) + 1;
            row.lookedUp(Source::from, black, start + i * slat + gap);
            row.lookedUp(Source::from, shadeTables[i], start + (i + 1) * slat);
        }
        row.from(width);
    }
}

}  // namespace vantle
