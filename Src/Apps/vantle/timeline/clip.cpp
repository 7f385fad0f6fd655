#include "timeline/clip.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "system/interrupt.h"

namespace vantle {

namespace {

/// Quarter turns clockwise that bring the stream's pictures upright, 0 to 3, as a camera noted them.
int quarterTurns(const AVStream& stream) {
    const std::uint8_t* const matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (matrix == nullptr) return 0;
    const double degrees = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(matrix));
    return std::isfinite(degrees) ? static_cast<int>(std::lround(-degrees / 90.0)) & 3 : 0;
}

/// True when one of a generated graph's own sources runs forever and no filter cuts it.
bool runsForever(const std::string& description) {
    const av::Graph graph(av::check(avfilter_graph_alloc(), "filters"));
    AVFilterInOut* inputs = nullptr;
    AVFilterInOut* outputs = nullptr;
    avfilter_graph_parse2(graph.get(), description.c_str(), &inputs, &outputs);
    const av::Pads inputsLeft(inputs);
    const av::Pads outputsLeft(outputs);
    bool forever = false;
    for (unsigned i = 0; i < graph->nb_filters; ++i) {
        AVFilterContext* const filter = graph->filters[i];
        const std::string_view name = filter->filter->name;
        if (name == "trim") return false;
        if (filter->nb_inputs > 0 || name == "movie" || filter->nb_outputs == 0 ||
            avfilter_pad_get_type(filter->output_pads, 0) != AVMEDIA_TYPE_VIDEO)
            continue;
        std::int64_t duration = -1;
        av_opt_get_int(filter, "duration", AV_OPT_SEARCH_CHILDREN, &duration);
        forever = forever || duration < 0;
    }
    return forever;
}

AVRational pixelShape(const AVFrame& frame) {
    const AVRational shape = frame.sample_aspect_ratio;
    return shape.num > 0 && shape.den > 0 ? shape : AVRational{1, 1};
}

bool hasAlpha(const AVFrame& frame) {
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    return format != nullptr && (format->flags & (AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_PAL)) != 0;
}

std::string text(AVRational value) { return std::to_string(value.num) + "/" + std::to_string(value.den); }

std::string text(Size size) { return std::to_string(size.width) + ":" + std::to_string(size.height); }

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

}  // namespace

Clip::Clip(const std::string& name) : decoder_(name, AVMEDIA_TYPE_VIDEO) {
    for (int i = 0; i < 2; ++i)
        if (av::Frame frame = decode()) ahead_.push_back(std::move(frame));
    if (ahead_.empty()) throw Error(name + ": holds no picture");
    still_ = ahead_.size() == 1;
    constexpr std::string_view generated = "lavfi:";
    endlessSource_ = name.starts_with(generated) && runsForever(name.substr(generated.size()));
}

av::Frame Clip::decode() {
    av::Frame frame = decoder_.next();
    if (!frame) return frame;
    // Video that does not say which colours it means is taken as players do, by its height.
    if (frame->colorspace == AVCOL_SPC_UNSPECIFIED)
        frame->colorspace = frame->height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    if (frame->color_range == AVCOL_RANGE_UNSPECIFIED)
        frame->color_range = frame->format == AV_PIX_FMT_YUVJ420P ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    // A stream without a container, or one without times for delayed pictures: they follow each other.
    if (frame->pts == AV_NOPTS_VALUE) frame->pts = end_;
    end_ = frame->pts + shownFor(*frame);
    return frame;
}

Size Clip::size() const { return shownSize(first()); }

Size Clip::shownSize(const AVFrame& frame) const {
    constexpr std::int64_t widest = 1 << 30;  // a damaged file may state pixels of any shape
    const AVRational shape = pixelShape(frame);
    Size size{static_cast<int>(std::min(av_rescale(frame.width, shape.num, shape.den), widest)),
              frame.height};
    if (quarterTurns(decoder_.stream()) % 2 != 0) std::swap(size.width, size.height);
    return {std::max(size.width, 1), std::max(size.height, 1)};
}

AVRational Clip::rate() const {
    if (still_) return {0, 1};
    AVStream& stream = decoder_.stream();
    const AVRational guess = av_guess_frame_rate(&decoder_.container(), &stream, nullptr);
    // A base rate far above what is played (some screen recordings) would only repeat pictures.
    const bool plausible = guess.num > 0 && av_q2d(guess) <= 240.0;
    return plausible || stream.avg_frame_rate.num <= 0 ? guess : stream.avg_frame_rate;
}

std::optional<double> Clip::statedSeconds() const {
    return endless() ? std::nullopt : decoder_.statedSeconds();
}

std::int64_t Clip::shownFor(const AVFrame& frame) const {
    if (frame.pkt_duration > 0) return frame.pkt_duration;
    const AVRational own = rate();
    return own.num > 0 ? av_rescale_q(1, av_inv_q(own), decoder_.stream().time_base) : 1;
}

std::string Clip::graph(const AVFrame& like) const {
    constexpr const char* turns[] = {"", "transpose=clock,", "hflip,vflip,", "transpose=cclock,"};
    std::string filters = "[in0]";
    if (!still_) filters += "fps=" + text(canvas_.rate) + ",";
    filters += turns[quarterTurns(decoder_.stream())];
    // Transparent pixels show black, as on an editor's empty track.
    if (hasAlpha(like)) filters += "format=gbrap,premultiply=inplace=1,format=gbrp,";
    const Size scaled = canvas_.fit == Fit::stretch
                            ? canvas_.size
                            : scaledTo(shownSize(like), canvas_.size, canvas_.fit == Fit::cover);
    filters += "scale=" + text(scaled) + ":flags=bicubic,";
    if (scaled != canvas_.size && canvas_.fit == Fit::cover) filters += "crop=" + text(canvas_.size) + ",";
    if (scaled != canvas_.size && canvas_.fit == Fit::contain)
        filters += "pad=" + text(canvas_.size) + ":(ow-iw)/2:(oh-ih)/2,";
    return filters + "setsar=1[out]";
}

void Clip::start(const Canvas& canvas, std::optional<std::int64_t> limit) {
    canvas_ = canvas;
    left_ = limit;
    filter(first());
}

void Clip::filter(const AVFrame& like) {
    const std::string source = "video_size=" + std::to_string(like.width) + "x" +
                               std::to_string(like.height) + ":pix_fmt=" + std::to_string(like.format) +
                               ":time_base=" + text(decoder_.stream().time_base) +
                               ":pixel_aspect=" + text(pixelShape(like));
    filters_.emplace(AVMEDIA_TYPE_VIDEO, std::vector{source}, graph(like));
    filtered_ = av::share(like);
}

bool Clip::isLikeFiltered(const AVFrame& frame) const {
    return frame.width == filtered_->width && frame.height == filtered_->height &&
           frame.format == filtered_->format && av_cmp_q(pixelShape(frame), pixelShape(*filtered_)) == 0;
}

av::Frame Clip::next() {
    throwIfInterrupted();  // a still never reads on
    if (left_ && (*left_)-- <= 0) return nullptr;
    if (stillPicture_) return av::share(*stillPicture_);
    for (;;) {
        if (av::Frame frame = filters_->pull()) {
            if (still_) stillPicture_ = av::share(*frame);
            return frame;
        }
        if (drained_) return nullptr;
        if (ahead_.empty())
            if (av::Frame frame = decode()) ahead_.push_back(std::move(frame));
        if (ahead_.empty()) {
            drained_ = true;
            filters_->close(0, end_);
        } else if (isLikeFiltered(*ahead_.front())) {
            filters_->push(0, std::move(ahead_.front()));
            ahead_.pop_front();
        } else if (!filters_->ended()) {
            filters_->close(0, ahead_.front()->pts);
        } else {
            // The input goes on with pictures of another form.
            filter(*ahead_.front());
        }
    }
}

AVRational commonRate(const Clip& from, const Clip& to) {
    constexpr double highest = 1000.0;  // as for --fps; damage and some raw streams state more
    for (const Clip* clip : {&from, &to})
        if (const AVRational rate = clip->rate(); rate.num > 0 && av_q2d(rate) <= highest) return rate;
    return {30, 1};
}

}  // namespace vantle
