#include "playing/clip.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "media/convert.h"
#include "system/interrupt.h"

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

/// Filters from a picture as decoded to the canvas.
std::vector<Filter> filtersFor(const Input& input, const AVFrame& picture, const Canvas& canvas) {
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
    const Size scaled = canvas.fit == Fit::stretch
                            ? canvas.size
                            : scaledTo(input.shownSize(picture), canvas.size, canvas.fit == Fit::cover);
    filters.push_back(sized("scale", scaled, {{"flags", "bicubic"}}));
    if (scaled != canvas.size && canvas.fit == Fit::cover) filters.push_back(sized("crop", canvas.size));
    if (scaled != canvas.size && canvas.fit == Fit::contain)
        filters.push_back(sized("pad", canvas.size, {{"x", "(ow-iw)/2"}, {"y", "(oh-ih)/2"}}));
    filters.push_back({"setsar", {{"sar", "1"}}});
    return filters;
}

bool sameForm(const AVFrame& a, const AVFrame& b) {
    return a.width == b.width && a.height == b.height && a.format == b.format &&
           av_cmp_q(a.sample_aspect_ratio, b.sample_aspect_ratio) == 0;
}

}  // namespace

Clip::Clip(Input& input, const Canvas& canvas, std::int64_t first, bool audio)
    : input_(input), canvas_(canvas), number_(first) {
    input_.start(number_, canvas_.rate, audio);
}

av::Frame Clip::next() {
    throwIfInterrupted();  // a still never reads on
    while (!ended_) {
        if (!ahead_) ahead_ = input_.nextPicture();
        ended_ = !ahead_;
        if (ended_ || (decoded_ && input_.gridNumber(ahead_->pts, canvas_.rate) > number_)) break;
        decoded_ = std::move(ahead_);
        shown_.reset();
        ended_ = input_.still();
    }
    if (!decoded_) throw Error(input_.name() + ": its pictures cannot be read");
    ++number_;
    if (!shown_) shown_ = onCanvas(*decoded_);
    return av::share(*shown_);
}

av::Frame Clip::onCanvas(const AVFrame& picture) {
    if (!filters_ || !sameForm(picture, *filtered_)) {
        filters_.emplace(picture, input_.timeBase(), filtersFor(input_, picture, canvas_));
        filtered_ = av::share(picture);
    }
    filters_->push(av::share(picture));
    av::Frame result = filters_->pull();
    if (!result) throw Error(input_.name() + ": a picture cannot be brought to the canvas");
    return result;
}

}  // namespace vantle
