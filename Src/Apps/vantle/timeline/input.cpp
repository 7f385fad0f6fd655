#include "timeline/input.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "media/versions.h"

namespace vantle {

namespace {

constexpr double highestRate = 1000.0;  // as for --fps; damage and some raw streams state more

int pictureStream(const Demuxer& demuxer) {
    const std::optional<int> stream = demuxer.best(AVMEDIA_TYPE_VIDEO);
    if (!stream) throw Error(demuxer.name() + ": holds no picture");
    return *stream;
}

/// True when one of a generated graph's own sources runs forever and no filter cuts it.
bool runsForever(const std::string& description) {
    const av::Graph graph(av::check(avfilter_graph_alloc(), "filters"));
    AVFilterInOut* inputs = nullptr;
    AVFilterInOut* outputs = nullptr;
    avfilter_graph_parse2(graph.get(), description.c_str(), &inputs, &outputs);
    avfilter_inout_free(&inputs);
    avfilter_inout_free(&outputs);
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

/// How the picture, or else its stream, says that it is turned and mirrored; null when neither does.
const std::int32_t* displayMatrix(const AVFrame& picture, const AVStream& stream) {
    if (const AVFrameSideData* const side = av_frame_get_side_data(&picture, AV_FRAME_DATA_DISPLAYMATRIX))
        return reinterpret_cast<const std::int32_t*>(side->data);
    return reinterpret_cast<const std::int32_t*>(av::streamSideData(stream, AV_PKT_DATA_DISPLAYMATRIX));
}

/// Quarter turns clockwise that bring a picture upright, 0 to 3.
int quarterTurns(const std::int32_t* matrix) {
    const double degrees = matrix != nullptr ? av_display_rotation_get(matrix) : 0.0;
    return std::isfinite(degrees) ? static_cast<int>(std::lround(-degrees / 90.0)) & 3 : 0;
}

}  // namespace

Input::Input(const std::string& name) : demuxer_(name), reader_(demuxer_, pictureStream(demuxer_)) {
    soundStream_ = demuxer_.best(AVMEDIA_TYPE_AUDIO);
    if (soundStream_) demuxer_.use(*soundStream_);
    for (int i = 0; i < 2; ++i)
        if (av::Frame frame = decode()) ahead_.push_back(std::move(frame));
    if (ahead_.empty()) throw Error(name + ": holds no picture");
    first_ = av::share(*ahead_.front());
    still_ = ahead_.size() == 1;
    constexpr std::string_view generated = "lavfi:";
    endlessSource_ = name.starts_with(generated) && runsForever(name.substr(generated.size()));
}

std::optional<int> Input::soundSampleRate() const {
    if (!soundStream_) return {};
    return demuxer_.stream(*soundStream_).codecpar->sample_rate;
}

av::Frame Input::decode() {
    av::Frame frame = reader_.next();
    if (!frame) return frame;
    // Video that does not say which colours it means is taken as players do, by its height.
    if (frame->colorspace == AVCOL_SPC_UNSPECIFIED)
        frame->colorspace = frame->height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    if (frame->color_range == AVCOL_RANGE_UNSPECIFIED)
        frame->color_range = frame->format == AV_PIX_FMT_YUVJ420P ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    const AVRational shape = frame->sample_aspect_ratio;
    if (shape.num <= 0 || shape.den <= 0) frame->sample_aspect_ratio = {1, 1};
    // A stream without a container, or one without times for delayed pictures: they follow each other.
    if (frame->pts == AV_NOPTS_VALUE) frame->pts = end_;
    end_ = frame->pts + shownFor(av::duration(*frame));
    return frame;
}

std::int64_t Input::shownFor(std::int64_t duration) const {
    if (duration > 0) return duration;
    const AVRational own = rate();
    return own.num > 0 ? av_rescale_q(1, av_inv_q(own), timeBase()) : 1;
}

Size Input::shownSize(const AVFrame& picture) const {
    constexpr std::int64_t widest = 1 << 30;  // a damaged file may state pixels of any shape
    const AVRational shape = picture.sample_aspect_ratio;
    Size size{static_cast<int>(std::min(av_rescale(picture.width, shape.num, shape.den), widest)),
              picture.height};
    if (quarterTurns(displayMatrix(picture, reader_.stream())) % 2 != 0) std::swap(size.width, size.height);
    return {std::max(size.width, 1), std::max(size.height, 1)};
}

std::vector<Filter> Input::upright(const AVFrame& picture) const {
    const std::int32_t* const matrix = displayMatrix(picture, reader_.stream());
    if (matrix == nullptr) return {};
    // A mirrored picture turns the other way round: seen in the signs of the matrix.
    switch (quarterTurns(matrix)) {
        case 1:
            return {{"transpose", {{"dir", matrix[3] > 0 ? "cclock_flip" : "clock"}}}};
        case 2: {
            std::vector<Filter> filters;
            if (matrix[0] < 0) filters.push_back({"hflip"});
            if (matrix[4] < 0) filters.push_back({"vflip"});
            return filters;
        }
        case 3:
            return {{"transpose", {{"dir", matrix[3] < 0 ? "clock_flip" : "cclock"}}}};
        default:
            return matrix[4] < 0 ? std::vector<Filter>{{"vflip"}} : std::vector<Filter>{};
    }
}

AVRational Input::rate() const {
    if (still_) return {0, 1};
    AVStream& stream = reader_.stream();
    const AVRational guess = av_guess_frame_rate(&demuxer_.container(), &stream, nullptr);
    // A base rate far above what is played (some screen recordings) would only repeat pictures.
    const bool plausible = guess.num > 0 && av_q2d(guess) <= 240.0;
    return plausible || stream.avg_frame_rate.num <= 0 ? guess : stream.avg_frame_rate;
}

std::int64_t Input::gridNumber(std::int64_t time, AVRational rate) const {
    return av_rescale_q_rnd(time, timeBase(), av_inv_q(rate),
                            static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX));
}

std::int64_t Input::frames(AVRational rate) {
    if (!measuredEnd_) measuredEnd_ = measuredEnd();
    return std::max<std::int64_t>(gridNumber(*measuredEnd_, rate) - gridStart(rate), 1);
}

std::int64_t Input::measuredEnd() {
    atStart_ = false;
    ahead_.clear();
    // Where a format knows its packets' places, the last few tell; where they contradict it, all of them.
    const AVStream& stream = reader_.stream();
    if (demuxer_.indexed()) {
        const std::int64_t stated =
            stream.duration > 0 ? stream.start_time + stream.duration
                                : av_rescale_q(demuxer_.container().duration, {1, AV_TIME_BASE}, timeBase());
        const std::int64_t second = av_rescale_q(1, {1, 1}, timeBase());
        if (seek(stated - 2 * second))
            if (const std::optional<std::int64_t> end = endOfPackets();
                end && std::abs(*end - stated) < second / 2)
                return *end;
    }
    restart();
    if (const std::optional<std::int64_t> end = endOfPackets()) return *end;
    restart();
    while (decode()) {
    }
    return end_;
}

std::optional<std::int64_t> Input::endOfPackets() {
    std::optional<std::int64_t> end;
    while (const av::Packet packet = demuxer_.read(reader_.stream().index)) {
        if (soundStream_) demuxer_.drop(*soundStream_);
        if (packet->pts == AV_NOPTS_VALUE) return {};
        if ((packet->flags & (AV_PKT_FLAG_DISCARD | AV_PKT_FLAG_CORRUPT)) != 0) continue;
        end = std::max(end.value_or(packet->pts), packet->pts + shownFor(packet->duration));
    }
    return end;
}

bool Input::seek(std::int64_t time) {
    if (!demuxer_.seek(reader_.stream().index, time)) return false;
    reader_.flush();
    ahead_.clear();
    return true;
}

void Input::restart() {
    demuxer_.reopen();
    reader_.flush();
    ahead_.clear();
    end_ = 0;
}

void Input::start(std::int64_t number, AVRational rate, bool sound) {
    if (soundStream_ && !sound) demuxer_.drop(*soundStream_);
    const bool reread = !std::exchange(atStart_, false);
    const std::int64_t second = av_rescale_q(1, {1, 1}, timeBase());
    const std::int64_t time = av_rescale_q(number, av_inv_q(rate), timeBase());
    if (still_ || (!reread && time - first_->pts < second)) return;
    if (soundStream_ && sound) demuxer_.use(*soundStream_);
    // A decoder may show its first picture only some way behind a key packet; sound needs a run-up.
    for (const int before : {sound ? 1 : 0, 5, 30}) {
        if (!seek(std::max(time, first_->pts) - before * second)) break;
        av::Frame picture = nextPicture();
        if (!picture || gridNumber(picture->pts, rate) > number) continue;
        ahead_.push_back(std::move(picture));
        return;
    }
    restart();
}

av::Frame Input::nextPicture() {
    if (still_) return av::share(*first_);
    if (ahead_.empty()) return decode();
    av::Frame picture = std::move(ahead_.front());
    ahead_.pop_front();
    return picture;
}

std::string Input::damageReport() const {
    const std::int64_t damaged = demuxer_.health().damaged;
    if (damaged == 0) return {};
    return name() + ": passed over " + std::to_string(damaged) + " damaged packet" + (damaged > 1 ? "s" : "");
}

AVRational commonRate(const Input& from, const Input& to) {
    for (const Input* input : {&from, &to})
        if (const AVRational rate = input->rate(); rate.num > 0 && av_q2d(rate) <= highestRate) return rate;
    return {30, 1};
}

}  // namespace vantle
