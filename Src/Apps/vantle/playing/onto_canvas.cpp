#include "playing/onto_canvas.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "media/convert.h"

namespace vantle {

namespace {

bool hasAlpha(const AVFrame& frame) {
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    return format != nullptr && (format->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL)) != 0;
}

/// `size` scaled to lie within `canvas` and touch it, or to cover it; at least one pixel.
Size scaledTo(Size size, Size canvas, bool cover) {
    const double across = static_cast<double>(canvas.width) / size.width;
    const double down = static_cast<double>(canvas.height) / size.height;
    const double factor = cover ? std::max(across, down) : std::min(across, down);
    // A line of pixels that covers a canvas would be longer than anything that can be scaled.
    const auto side = [&](int length) {
        return static_cast<int>(std::clamp(std::round(length * factor), 1.0, 1e6));
    };
    return {side(size.width), side(size.height)};
}

Filter sized(const char* name, Size size, av::Options options = {}) {
    options.insert({{"w", std::to_string(size.width)}, {"h", std::to_string(size.height)}});
    return {name, std::move(options)};
}

/// `size`, which lies within `canvas`, in whole chroma samples with as many on both of its sides, or the
/// canvas's where less is free.
Size withRoomBeside(Size size, Size canvas) {
    const auto side = [](int length, int most) { return most - length < 4 ? most : (length + 1) / 2 * 2; };
    return {side(size.width, canvas.width), side(size.height, canvas.height)};
}

/// A length between the two sides of a picture within its canvas, in whole chroma samples.
int evenHalf(int length) { return length / 4 * 2; }

/// Fills what a picture within the canvas leaves free by the picture itself, enlarged, blurred and darkened.
/// Its copy is blurred very small, and only what shows of it is enlarged.
void addBlurredSides(std::vector<Filter>& filters, Size picture, Size canvas) {
    constexpr int smallSide = 96;  // about, and larger than a canvas of a few pixels
    const bool across = picture.width < canvas.width;
    const int free = across ? canvas.width - picture.width : canvas.height - picture.height;
    const int before = evenHalf(free);
    const double factor = static_cast<double>(smallSide) / std::max(canvas.width, canvas.height);
    const auto small = [&](int length) {
        return std::max(static_cast<int>(std::lround(length * factor)), 1);
    };
    const Size whole{std::max(small(canvas.width), 4), std::max(small(canvas.height), 4)};
    const auto add = [&](Filter filter) {
        filters.push_back(std::move(filter));
        return filters.size();  // its number, as the graph's input is 0
    };
    const std::size_t shown = add({"split"});
    add(sized("scale", scaledTo(picture, whole, true), {{"flags", "bilinear"}}));
    add(sized("crop", whole));
    add({"gblur", {{"sigma", "2.5"}, {"steps", "2"}}});
    add({"drawbox", {{"color", "black@0.35"}, {"t", "fill"}}});
    const std::size_t blurred = add({"split"});
    std::vector<std::size_t> stacked;
    const auto addSide = [&](int length, bool atEnd) {
        const Size side = across ? Size{length, canvas.height} : Size{canvas.width, length};
        const Size part = across ? Size{std::min(small(length), whole.width), whole.height}
                                 : Size{whole.width, std::min(small(length), whole.height)};
        Filter crop = sized("crop", part, {{"x", atEnd ? "iw-ow" : "0"}, {"y", atEnd ? "ih-oh" : "0"}});
        crop.inputs = {blurred};
        add(std::move(crop));
        return add(sized("scale", side, {{"flags", "bicubic"}}));
    };
    const std::size_t first = addSide(before, false);
    const std::size_t last = addSide(free - before, true);
    add({across ? "hstack" : "vstack", {{"inputs", "3"}}, {first, shown, last}});
}

}  // namespace

Box boxOf(Size size, const Canvas& canvas) {
    if (canvas.fit == Fit::stretch || canvas.fit == Fit::cover) return {0, 0, canvas.size};
    Size shown = scaledTo(size, canvas.size, false);
    if (canvas.fit == Fit::blur) shown = withRoomBeside(shown, canvas.size);
    const int across = canvas.size.width - shown.width;
    const int down = canvas.size.height - shown.height;
    if (canvas.fit == Fit::blur) return {evenHalf(across), evenHalf(down), shown};
    return {across / 2, down / 2, shown};
}

std::vector<Filter> filtersOnto(const Canvas& canvas, const Input& input, const AVFrame& picture) {
    std::vector<Filter> filters = upright(input.orientationOf(picture));
    if (coloursOf(picture).hdr())
        filters.insert(filters.end(),
                       {{"zscale", {{"transfer", "linear"}, {"npl", "100"}}},
                        {"format", {{"pix_fmts", "gbrpf32le"}}},
                        {"zscale", {{"primaries", "bt709"}}},
                        {"tonemap", {{"tonemap", "hable"}, {"desat", "0"}}},
                        {"zscale", {{"transfer", "bt709"}, {"matrix", "bt709"}, {"range", "tv"}}},
                        {"format", {{"pix_fmts", "yuv420p"}}}});
    // Transparent pixels show black, as on an editor's empty track.
    if (hasAlpha(picture))
        filters.insert(filters.end(), {{"format", {{"pix_fmts", "gbrap"}}},
                                       {"premultiply", {{"inplace", "1"}}},
                                       {"format", {{"pix_fmts", "gbrp"}}}});
    const Size size = input.shownSize(picture);
    const Size scaled =
        canvas.fit == Fit::cover ? scaledTo(size, canvas.size, true) : boxOf(size, canvas).size;
    filters.push_back(sized("scale", scaled, {{"flags", "bicubic"}}));
    if (scaled != canvas.size && canvas.fit == Fit::cover) filters.push_back(sized("crop", canvas.size));
    if (scaled != canvas.size && canvas.fit == Fit::contain)
        filters.push_back(sized("pad", canvas.size, {{"x", "(ow-iw)/2"}, {"y", "(oh-ih)/2"}}));
    if (scaled != canvas.size && canvas.fit == Fit::blur) addBlurredSides(filters, scaled, canvas.size);
    filters.push_back({"setsar", {{"sar", "1"}}});
    return filters;
}

}  // namespace vantle
