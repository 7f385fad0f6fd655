#include "media/convert.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace vantle {

namespace {

bool sameLayout(const PixelView& a, const PixelView& b) {
    return a.width == b.width && a.height == b.height && a.format == b.format && a.space == b.space &&
           a.range == b.range;
}

const int* coefficients(AVColorSpace space) { return sws_getCoefficients(space); }

int isFullRange(const PixelView& view) {
    return view.range == AVCOL_RANGE_JPEG && !isRgb(view.format) ? 1 : 0;
}

}  // namespace

av::Frame blankPicture(Size size, const PictureFormat& format) {
    av::Frame frame = av::makeFrame();
    frame->width = size.width;
    frame->height = size.height;
    frame->format = format.pixels;
    frame->colorspace = format.space;
    frame->color_range = format.range;
    av::check(av_frame_get_buffer(frame.get(), 0), "frame");
    return frame;
}

bool isRgb(AVPixelFormat format) {
    return (av_pix_fmt_desc_get(format)->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

PixelView viewOf(const AVFrame& frame) {
    PixelView view{{},
                   {},
                   frame.width,
                   frame.height,
                   static_cast<AVPixelFormat>(frame.format),
                   frame.colorspace,
                   frame.color_range};
    std::copy_n(frame.data, 4, view.data);
    std::copy_n(frame.linesize, 4, view.stride);
    return view;
}

PixelView viewOf(DIImage image) {
    const int pitch = DIGetPitch(image);
    const int height = DIGetHeight(image);
    std::uint8_t* const top = DIGetBits(image) + static_cast<std::ptrdiff_t>(height - 1) * pitch;
    return {{top}, {-pitch}, DIGetWidth(image), height, AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};
}

void Converter::convert(const PixelView& from, const PixelView& to) {
    if (!scaler_ || !sameLayout(from, lastFrom_) || !sameLayout(to, lastTo_)) {
        const int flags =
            filter_ | (smoothChroma_ ? SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_ACCURATE_RND : 0);
        scaler_.reset(av::check(sws_alloc_context(), "scaler"));
        // The ranges are told before it chooses its way: between equal formats it would else only copy.
        for (const auto& [option, value] :
             std::initializer_list<std::pair<const char*, int>>{{"srcw", from.width},
                                                                {"srch", from.height},
                                                                {"src_format", from.format},
                                                                {"src_range", isFullRange(from)},
                                                                {"dstw", to.width},
                                                                {"dsth", to.height},
                                                                {"dst_format", to.format},
                                                                {"dst_range", isFullRange(to)},
                                                                {"sws_flags", flags}})
            av_opt_set_int(scaler_.get(), option, value, 0);
        if (sws_init_context(scaler_.get(), nullptr, nullptr) < 0) scaler_.reset();
        if (!scaler_)
            throw Error(std::string("cannot convert pixels from ") + av_get_pix_fmt_name(from.format) +
                        " to " + av_get_pix_fmt_name(to.format));
        sws_setColorspaceDetails(scaler_.get(), coefficients(from.space), isFullRange(from),
                                 coefficients(to.space), isFullRange(to), 0, 1 << 16, 1 << 16);
        lastFrom_ = from;
        lastTo_ = to;
    }
    const int lines = sws_scale(scaler_.get(), from.data, from.stride, 0, from.height, to.data, to.stride);
    if (lines != to.height)
        throw Error(std::string("converting pixels from ") + av_get_pix_fmt_name(from.format) + " to " +
                    av_get_pix_fmt_name(to.format) + " failed" +
                    (lines < 0 ? ": " + av::message(lines) : std::string()));
}

}  // namespace vantle
