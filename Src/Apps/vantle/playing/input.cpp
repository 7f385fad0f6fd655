#include "playing/input.h"

extern "C" {
#include <libavutil/common.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include "media/convert.h"
#include "media/metadata.h"
#include "media/versions.h"
#include "timeline/pace.h"

namespace vantle {

namespace {

// Of decoders. With more than one they hold a picture for each; while many inputs are opened side by side,
// one does.
constexpr int oneThread = 1;
constexpr int asManyAsCores = 0;

// Pictures a second: more than that only some screen recordings state, where most are repeated.
constexpr double fastest = 240.0;

int pictureStream(const Demuxer& demuxer) {
    if (const std::optional<int> stream = demuxer.best(AVMEDIA_TYPE_VIDEO)) return *stream;
    throw Error(demuxer.name() + ": " + demuxer.whyNone(AVMEDIA_TYPE_VIDEO));
}

/// True when one of a generated graph's own sources runs forever and no filter cuts it.
bool runsForever(const std::string& description) {
    const av::Graph graph = parseGraph(description);
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

}  // namespace

Input::Opened::Opened(const std::string& name, int threads)
    : demuxer(name),
      stream(pictureStream(demuxer)),
      reader(std::in_place, demuxer, stream, threads),
      probing(threads == oneThread) {
    if (const std::optional<int> audio = demuxer.best(AVMEDIA_TYPE_AUDIO)) demuxer.use(*audio);
}

Input::Input(const std::string& name, Orientation turn) : turn_(turn) {
    source_.name = name;
    open(oneThread);
    if (opened_->ahead.empty()) throw Error(name + ": holds no picture");
    // What its pixels are does not matter, and those of hundreds of inputs would fill the memory.
    const AVFrame& picture = *opened_->ahead.front();
    first_ = av::makeFrame();
    av::check(av_frame_copy_props(first_.get(), &picture), name);
    first_->width = picture.width;
    first_->height = picture.height;
    first_->format = picture.format;

    AVStream& stream = opened_->reader->stream();
    source_.still = opened_->ahead.size() == 1;
    if (const std::uint8_t* const matrix = av::streamSideData(stream, AV_PKT_DATA_DISPLAYMATRIX))
        std::memcpy(displayMatrix_.emplace().data(), matrix, sizeof *displayMatrix_);
    source_.size = shownSize(*first_);
    source_.pixelAspect = first_->sample_aspect_ratio;
    source_.orientation = orientationOf(*first_);
    source_.interlaced = opened_->deinterlacing || stream.codecpar->field_order > AV_FIELD_PROGRESSIVE;
    source_.colours = coloursOf(*first_);
    if (const AVPixFmtDescriptor* const pixels =
            av_pix_fmt_desc_get(static_cast<AVPixelFormat>(first_->format)))
        source_.depth = pixels->comp[0].depth;
    if (const std::optional<int> audio = opened_->demuxer.best(AVMEDIA_TYPE_AUDIO)) {
        const AVCodecParameters& coded = *opened_->demuxer.stream(*audio).codecpar;
        if (coded.sample_rate > 0) source_.audio = {*audio, coded.sample_rate, coded.ch_layout.nb_channels};
    } else if (opened_->demuxer.holds(AVMEDIA_TYPE_AUDIO)) {
        source_.leftOut = opened_->demuxer.whyNone(AVMEDIA_TYPE_AUDIO) + "; it is left out";
    }
    if (opened_->demuxer.holds(AVMEDIA_TYPE_SUBTITLE))
        source_.leftOut += (source_.leftOut.empty() ? "" : "; ") + std::string("its subtitles are left out");
    constexpr std::string_view generated = "lavfi:";
    source_.generated = name.starts_with(generated);
    source_.endless = source_.still || (source_.generated && runsForever(name.substr(generated.size())));
    const AVCodecID codec = stream.codecpar->codec_id;
    source_.copyable = source_.isClip() && (codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC);
    source_.rate = source_.still ? AVRational{0, 1} : measuredRate();
    if (!source_.generated) source_.tags = recordingTags(opened_->demuxer.container());
    source_.firstTime = first_->pts;
    if (!source_.endless) source_.length = av_sat_sub64(measuredEnd(), first_->pts);
}

void Input::open(int threads) {
    opened_ = std::make_unique<Opened>(source_.name, threads);
    source_.timeBase = opened_->reader->stream().time_base;
    for (int i = 0; i < 2; ++i)
        if (av::Frame frame = decode()) opened_->ahead.push_back(std::move(frame));
}

void Input::close() {
    if (!opened_) return;
    health_ = health();
    files_ = opened_->demuxer.files();
    opened_.reset();
}

Demuxer::Health Input::health() const {
    if (!opened_) return health_;
    Demuxer::Health health = opened_->demuxer.health();
    health.packets += health_.packets;
    health.damaged += health_.damaged;
    if (health.shortfall.empty()) health.shortfall = health_.shortfall;
    return health;
}

av::Frame Input::decode() {
    std::optional<Filters>& deinterlacing = opened_->deinterlacing;
    for (;;) {
        if (av::Frame frame = deinterlacing ? deinterlacing->pull() : nullptr) return frame;
        if (deinterlacing && deinterlacing->ended()) return nullptr;
        av::Frame frame = decodeStored();
        if (!deinterlacing && (!frame || !av::isInterlaced(*frame))) return frame;
        if (!deinterlacing) {
            const AVRational unit = source_.timeBase;
            const std::string time = std::to_string(unit.num) + "/" + std::to_string(unit.den);
            deinterlacing.emplace(
                *frame, unit,
                std::vector<Filter>{{"bwdif", {{"mode", "send_frame"}, {"deint", "interlaced"}}},
                                    {"settb", {{"expr", time}}}});
        }
        // The filter looks at the picture behind, too.
        if (frame)
            deinterlacing->push(std::move(frame));
        else
            deinterlacing->close(opened_->end);
    }
}

av::Frame Input::decodeStored() {
    av::Frame frame = opened_->reader->next();
    if (!frame) return frame;
    // Video that does not say which colours it means is taken as players do, by its height.
    if (frame->colorspace == AVCOL_SPC_UNSPECIFIED)
        frame->colorspace = frame->height >= 720 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    if (frame->color_range == AVCOL_RANGE_UNSPECIFIED)
        frame->color_range = frame->format == AV_PIX_FMT_YUVJ420P ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    // What the container states of the pixels' shape goes before what the pictures do.
    const AVRational shape =
        av_guess_sample_aspect_ratio(&opened_->demuxer.container(), &opened_->reader->stream(), frame.get());
    // Square but for what rounding a width to whole pixels leaves is square.
    const bool isStated = shape.num > 0 && shape.den > 0;
    const bool isSquare =
        !isStated || std::abs(av_rescale(frame->width, shape.num, shape.den) - frame->width) <= 1;
    frame->sample_aspect_ratio = isSquare ? AVRational{1, 1} : shape;
    // A stream without a container, or one without times for delayed pictures: they follow each other.
    if (frame->pts == AV_NOPTS_VALUE) frame->pts = opened_->end;
    opened_->end = frame->pts + shownFor(av::duration(*frame));
    return frame;
}

std::int64_t Input::shownFor(std::int64_t duration) const {
    return std::max(duration,
                    source_.rate.num > 0 ? av_rescale_q(1, av_inv_q(source_.rate), source_.timeBase) : 1);
}

Orientation Input::orientationOf(const AVFrame& picture) const {
    std::optional<DisplayMatrix> matrix = displayMatrix_;
    if (const AVFrameSideData* const side = av_frame_get_side_data(&picture, AV_FRAME_DATA_DISPLAYMATRIX))
        std::memcpy(matrix.emplace().data(), side->data, sizeof *matrix);
    return inTurn(matrix ? vantle::orientationOf(*matrix) : Orientation{}, turn_);
}

std::optional<DisplayMatrix> Input::displayMatrix() const {
    if (turn_ == Orientation{}) return displayMatrix_;
    return matrixOf(inTurn(displayMatrix_ ? vantle::orientationOf(*displayMatrix_) : Orientation{}, turn_));
}

Size Input::shownSize(const AVFrame& picture) const {
    constexpr std::int64_t widest = 1 << 30;  // a damaged file may state pixels of any shape
    const AVRational shape = picture.sample_aspect_ratio;
    Size size{static_cast<int>(std::min(av_rescale(picture.width, shape.num, shape.den), widest)),
              picture.height};
    if (orientationOf(picture).quarterTurns % 2 != 0) std::swap(size.width, size.height);
    return {std::max(size.width, 1), std::max(size.height, 1)};
}

std::int64_t Input::gridNumber(std::int64_t time, AVRational rate) const {
    // Counted from the first picture: a picture's distance from it is a whole number of frames, its time need
    // not be.
    return av_rescale_q_rnd(av_sat_sub64(time, first_->pts), timeBase(), av_inv_q(rate),
                            static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX));
}

AVRational Input::measuredRate() {
    AVStream& stream = opened_->reader->stream();
    AVFormatContext& container = opened_->demuxer.container();
    std::vector<std::int64_t> times;
    // The index of such a file has all pictures; of others the first few seconds tell.
    if (std::string_view(container.iformat->name).starts_with("mov,")) {
        for (int i = 0; i < avformat_index_get_entries_count(&stream); ++i)
            times.push_back(avformat_index_get_entry(&stream, i)->timestamp);
    } else if (!source_.generated) {
        constexpr std::size_t enough = 100;
        restart();
        opened_->atStart = false;
        // A packet may hold half an interlaced picture.
        const auto next = [&]() -> std::optional<std::int64_t> {
            if (source_.interlaced) {
                const av::Frame picture = decode();
                return picture ? std::optional(picture->pts) : std::nullopt;
            }
            const av::Packet packet = opened_->demuxer.read(opened_->stream);
            return packet ? std::optional(packet->pts) : std::nullopt;
        };
        for (std::optional<std::int64_t> time = next(); time && times.size() < enough; time = next())
            if (*time != AV_NOPTS_VALUE) times.push_back(*time);
        restart();
    }
    const AVRational rate = paceOf(std::move(times), source_.timeBase);
    if (rate.num > 0 && av_q2d(rate) <= fastest) return rate;
    const AVRational stated =
        av_guess_frame_rate(&opened_->demuxer.container(), &opened_->reader->stream(), nullptr);
    return stated.num > 0 && av_q2d(stated) <= fastest ? stated : opened_->reader->stream().avg_frame_rate;
}

std::int64_t Input::measuredEnd() {
    if (!opened_) open(oneThread);
    opened_->atStart = false;
    opened_->ahead.clear();
    // Where a format knows its packets' places, the last few tell; where they contradict it, all of them.
    if (opened_->demuxer.indexed()) {
        const AVStream& stream = opened_->reader->stream();
        const AVFormatContext& container = opened_->demuxer.container();
        const std::int64_t stated =
            stream.duration > 0 && stream.start_time != AV_NOPTS_VALUE
                ? stream.start_time + stream.duration
                : av_rescale_q(container.duration, {1, AV_TIME_BASE}, source_.timeBase);
        const std::int64_t second = av_rescale_q(1, {1, 1}, source_.timeBase);
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
    return opened_->end;
}

std::optional<std::int64_t> Input::endOfPackets() {
    if (source_.audio) opened_->demuxer.drop(source_.audio->stream);
    std::vector<std::int64_t> times;
    std::int64_t end = std::numeric_limits<std::int64_t>::min();
    while (const av::Packet packet = opened_->demuxer.read(opened_->stream)) {
        if (packet->pts == AV_NOPTS_VALUE) return {};
        if ((packet->flags & (AV_PKT_FLAG_DISCARD | AV_PKT_FLAG_CORRUPT)) != 0) continue;
        times.push_back(packet->pts);
        end = std::max(end, av_sat_add64(packet->pts, packet->duration));
    }
    if (times.empty()) return {};
    // The last picture's own duration may be missing or far too short: it shows as long as others do at
    // least.
    std::ranges::sort(times);
    std::int64_t step = std::max(shownFor(0), av_rescale_q(1, {1, 10}, source_.timeBase));
    for (std::size_t i = 1; i < times.size(); ++i)
        if (times[i] > times[i - 1]) step = std::min(step, av_sat_sub64(times[i], times[i - 1]));
    return std::max(end, av_sat_add64(times.back(), step));
}

bool Input::seek(std::int64_t time) {
    if (!opened_->demuxer.seek(opened_->stream, time)) return false;
    opened_->reader->flush();
    opened_->deinterlacing.reset();
    opened_->ahead.clear();
    return true;
}

void Input::restart() {
    opened_->demuxer.reopen();
    opened_->reader->flush();
    opened_->deinterlacing.reset();
    opened_->ahead.clear();
    opened_->end = 0;
}

void Input::start(std::int64_t number, AVRational rate, bool audio) {
    if (!opened_) open(asManyAsCores);
    if (source_.audio && !audio) opened_->demuxer.drop(source_.audio->stream);
    const bool reread = !std::exchange(opened_->atStart, false);
    const std::int64_t second = av_rescale_q(1, {1, 1}, source_.timeBase);
    const std::int64_t time = first_->pts + av_rescale_q(number, av_inv_q(rate), source_.timeBase);
    if (source_.still || (!reread && time - first_->pts < second)) return;
    if (std::exchange(opened_->probing, false)) {
        opened_->reader.reset();  // which lets go of its stream
        opened_->reader.emplace(opened_->demuxer, opened_->stream, asManyAsCores);
    }
    if (source_.audio && audio) opened_->demuxer.use(source_.audio->stream);
    // A decoder may show its first picture only some way behind a key packet; audio needs a run-up.
    for (const int before : {audio ? 1 : 0, 5, 30}) {
        if (!seek(std::max(time, first_->pts) - before * second)) break;
        av::Frame picture = nextPicture();
        if (!picture || gridNumber(picture->pts, rate) > number) continue;
        opened_->ahead.push_back(std::move(picture));
        return;
    }
    restart();
}

av::Frame Input::nextPicture() {
    std::deque<av::Frame>& ahead = opened_->ahead;
    if (ahead.empty()) return decode();
    if (source_.still) return av::share(*ahead.front());
    av::Frame picture = std::move(ahead.front());
    ahead.pop_front();
    return picture;
}

}  // namespace vantle
