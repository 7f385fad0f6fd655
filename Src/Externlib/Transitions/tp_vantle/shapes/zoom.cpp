// Zoom: the outgoing frame is magnified about the centre while the incoming one, whole and reduced, grows and
// fades in over it. Pixels are the nearest ones; coordinates are truncated single-precision values.
#include <algorithm>
#include <cstdlib>

#include "frame/progress.h"
#include "frame/sampler.h"
#include "frame/stage.h"

namespace vantle {

namespace {

/// Where the coordinates of a frame of this size come from that is shown `scale` times as large about its
/// centre.
auto scaled(std::int32_t size, float scale) {
    return [=, middle = static_cast<float>(size / 2)](std::int32_t coordinate) {
        const float source = static_cast<float>(coordinate - size / 2) / scale + middle;
        // Beyond 2^24 single precision rounds the last one to the size itself.
        return std::min(static_cast<std::int32_t>(source), size - 1);
    };
}

}  // namespace

/// Byte 3 and the padding are not written.
void zoom(const Stage& stage, const Progress& progress) {
    const std::int32_t width = stage.width();
    const std::int32_t height = stage.height();
    if (progress.ended()) {
        stage.show(Source::to, Writes::colours);
        return;
    }
    const auto s = static_cast<float>(progress.linear());
    const float magnification = 20.0F * s + 1.0F;
    const float opacity = std::min(3.0F * s, 1.0F);
    const std::int32_t halfColumns = static_cast<std::int32_t>(static_cast<float>(width) * s) / 2;
    const std::int32_t halfRows = static_cast<std::int32_t>(static_cast<float>(height) * s) / 2;
    const Span shown{width / 2 - halfColumns + 1, width / 2 + halfColumns};
    Magnifier magnified(stage, Source::from, {0, width}, scaled(width, magnification),
                        scaled(height, magnification));
    Sampler reduced(stage, Source::to, shown, scaled(width, s), scaled(height, s));
    for (Row row : stage.rows(Writes::colours)) {
        const auto behind = magnified(row);
        if (halfColumns >= 3 && std::abs(row.y() - height / 2) < halfRows)
            row.sample(behind, shown.first).sample(reduced(row), behind, opacity, shown.end);
        row.sample(behind, width);
    }
}

}  // namespace vantle
