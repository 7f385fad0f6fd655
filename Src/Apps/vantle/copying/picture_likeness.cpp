#include "copying/picture_likeness.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace vantle {

namespace {

const AVPixFmtDescriptor& descriptor(const AVFrame& picture) {
    return *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
}

}  // namespace

bool samePixels(const AVFrame& a, const AVFrame& b) {
    if (a.format != b.format || a.width != b.width || a.height != b.height) return false;
    const auto format = static_cast<AVPixelFormat>(a.format);
    for (int plane = 0; plane < av_pix_fmt_count_planes(format); ++plane) {
        const auto bytes = static_cast<std::size_t>(av_image_get_linesize(format, a.width, plane));
        const bool isChroma = plane == 1 || plane == 2;
        const int rows = isChroma ? AV_CEIL_RSHIFT(a.height, descriptor(a).log2_chroma_h) : a.height;
        for (std::ptrdiff_t y = 0; y < rows; ++y)
            if (std::memcmp(a.data[plane] + y * a.linesize[plane], b.data[plane] + y * b.linesize[plane],
                            bytes) != 0)
                return false;
    }
    return true;
}

Brightness brightnessOf(const AVFrame& picture) {
    constexpr int across = 16;
    constexpr int down = 8;
    constexpr int samples = 8;  // of a cell, in each direction
    const int depth = descriptor(picture).comp[0].depth;
    const auto at = [&](int x, int y) {
        const std::uint8_t* const row = picture.data[0] + std::ptrdiff_t{y} * picture.linesize[0];
        return depth > 8 ? reinterpret_cast<const std::uint16_t*>(row)[x] : row[x];
    };
    std::array<std::int64_t, across * down> sums{};
    for (int y = 0; y < down * samples; ++y)
        for (int x = 0; x < across * samples; ++x)
            sums[static_cast<std::size_t>(y / samples * across + x / samples)] +=
                at(x * picture.width / (across * samples), y * picture.height / (down * samples));
    Brightness cells{};
    std::ranges::transform(sums, cells.begin(), [&](std::int64_t sum) {
        return static_cast<std::uint8_t>(sum * 255 / (samples * samples * ((1 << depth) - 1)));
    });
    return cells;
}

bool alike(const Brightness& a, const Brightness& b) {
    constexpr std::size_t most = 20;  // on average
    std::size_t difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i) difference += static_cast<std::size_t>(std::abs(a[i] - b[i]));
    return difference <= most * a.size();
}

}  // namespace vantle
