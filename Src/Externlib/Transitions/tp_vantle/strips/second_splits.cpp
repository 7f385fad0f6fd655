// Second splits: a band about the centre line grows over the outgoing frame and then shrinks with the
// incoming one outside it. Within it the incoming frame's share grows with the distance from the centre. The
// three have a shape in common and hardly a rule.
#include <cstdlib>

#include "frame/columns.h"
#include "frame/progress.h"
#include "frame/rounding.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// 0 on the centre line to 255 at half of `size` from it.
std::int32_t ramp(std::int32_t distance, std::int32_t size) {
    return truncated(2.0 * (distance / static_cast<double>(size)) * 255.0);
}

}  // namespace

/// A band of rows. Byte 3 and the padding are not written.
void rowSplit2(const Stage& stage, const Progress& progress) {
    const std::int32_t height = stage.height();
    const double eased = progress.eased();
    const Source outside = eased < 0.5 ? Source::from : Source::to;
    const std::int32_t half = eased < 0.5 ? progress.easedSize(height) : rounded((1.0 - eased) * height);
    for (Row row : stage.rows(Writes::colours)) {
        const std::int32_t distance = std::abs(row.y() - height / 2);
        if (half != 0 && distance <= half)
            row.mix(ramp(distance, height), stage.width());
        else
            row.showRest(outside);
    }
}

/// A band of columns, in 256ths. Byte 3 and the padding are those of the frame outside.
void colSplit2(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const double eased = progress.eased();
    const Source outside = eased < 0.5 ? Source::from : Source::to;
    const std::int32_t half = truncated(width * (eased < 0.5 ? eased : 1.0 - eased));
    const std::int32_t left = width / 2 - half;
    const std::int32_t right = width / 2 + half;
    PerColumn weights([=](std::int32_t x) {
        const bool onLeft = x < width / 2;
        const std::int64_t distance = onLeft ? x : x - width / 2;
        const auto share = static_cast<std::int32_t>(510 * distance / width);
        return onLeft ? 255 - share : share;
    });
    for (Row row : stage.rows(coloursOver(outside)))
        row.show(outside, left).mix(weights(row), right, Division::by256).showRest(outside);
}

/// A cross, growing linearly: the mean of a ramp along the rows and one along the columns. Byte 3 and the
/// padding are not written.
void crossSplit2(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const std::int32_t height = stage.height();
    const double t = progress.linear();
    const Source outside = t < 0.5 ? Source::from : Source::to;
    const auto half = [&](std::int32_t size) {
        return t < 0.5 ? progress.linearSize(size) : rounded(size * (1.0 - t));
    };
    const std::int32_t halfRows = half(height);
    const std::int32_t halfColumns = half(width);
    PerColumn across([=](std::int32_t x) { return ramp(std::abs(x - width / 2), width); });
    for (Row row : stage.rows(Writes::colours)) {
        const std::int32_t distance = std::abs(row.y() - height / 2);
        if (distance < halfRows) {
            row.mixMean(across(row), ramp(distance, height), width);
        } else {
            row.show(outside, width / 2 - halfColumns + 1)
                .mixMean(across(row), ramp(distance, height), width / 2 + halfColumns)
                .showRest(outside);
        }
    }
}

}  // namespace vantle
