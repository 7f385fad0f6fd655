#include "decoder.h"

extern "C" {
#include <libavdevice/avdevice.h>
#include <libavutil/dict.h>
}

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string_view>

#include "interrupt.h"

namespace vantle {

namespace {

av::Input open(const std::string& name) {
    constexpr std::string_view generated = "lavfi:";
    const bool isGenerated = name.starts_with(generated);
    std::string url = isGenerated ? name.substr(generated.size()) : name;
    if (!isGenerated && std::filesystem::is_directory(url)) throw Error(name + ": is a directory");
    // A file's name may hold a colon, which would make the part before it a protocol.
    if (!isGenerated && std::filesystem::exists(url)) url.insert(0, "file:");
    avdevice_register_all();

    AVFormatContext* context = av::check(avformat_alloc_context(), name);
    context->interrupt_callback.callback = [](void*) { return interrupted() ? 1 : 0; };
    const int code = avformat_open_input(&context, url.c_str(),
                                         isGenerated ? av_find_input_format("lavfi") : nullptr, nullptr);
    throwIfInterrupted();
    av::check(code, name);  // a context that fails to open is freed
    av::Input input(context);
    av::check(avformat_find_stream_info(input.get(), nullptr), name);
    return input;
}

int bestStream(AVFormatContext& input, AVMediaType type) {
    return av_find_best_stream(&input, type, -1, -1, nullptr, 0);
}

}  // namespace

bool Decoder::has(const std::string& name, AVMediaType type) { return bestStream(*open(name), type) >= 0; }

Decoder::Decoder(const std::string& name, AVMediaType type)
    : name_(name), input_(open(name)), packet_(av::makePacket()) {
    stream_ = bestStream(*input_, type);
    if (stream_ < 0) fail(type == AVMEDIA_TYPE_VIDEO ? "holds no picture" : "holds no sound");
    const AVCodecParameters& parameters = *stream().codecpar;
    const AVCodec* const decoder = avcodec_find_decoder(parameters.codec_id);
    if (decoder == nullptr) fail(std::string("no decoder for ") + avcodec_get_name(parameters.codec_id));
    codec_.reset(av::check(avcodec_alloc_context3(decoder), name_));
    av::check(avcodec_parameters_to_context(codec_.get(), &parameters), name_);
    codec_->pkt_timebase = stream().time_base;
    codec_->thread_count = 0;
    // Damage in a still would be all of the picture; a video's decoder hides what it can.
    const std::string_view format = input_->iformat->name;
    if (format.ends_with("_pipe") || format == "image2") codec_->err_recognition |= AV_EF_EXPLODE;
    av::check(avcodec_open2(codec_.get(), decoder, nullptr), name_);
}

av::Frame Decoder::next() {
    av::Frame frame = av::makeFrame();
    for (;;) {
        throwIfInterrupted();
        const int code = avcodec_receive_frame(codec_.get(), frame.get());
        if (code == AVERROR_EOF) return nullptr;
        if (code == AVERROR(EAGAIN)) {
            feed();
            continue;
        }
        if (code < 0) fail(av::message(code));
        frame->pts = frame->best_effort_timestamp;
        return frame;
    }
}

void Decoder::feed() {
    int code = av_read_frame(input_.get(), packet_.get());
    throwIfInterrupted();
    if (code == AVERROR_EOF) {
        checkLength();
        code = avcodec_send_packet(codec_.get(), nullptr);
    } else if (code >= 0) {
        noteEnd(*packet_);
        if (packet_->stream_index == stream_) code = avcodec_send_packet(codec_.get(), packet_.get());
        av_packet_unref(packet_.get());
    }
    if (code < 0) fail(av::message(code));
}

std::optional<double> Decoder::statedSeconds() const {
    if (stream().duration > 0) return static_cast<double>(stream().duration) * av_q2d(stream().time_base);
    if (input_->duration > 0 && input_->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE)
        return static_cast<double>(input_->duration) / AV_TIME_BASE;
    return {};
}

void Decoder::noteEnd(const AVPacket& packet) {
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (time == AV_NOPTS_VALUE) return;
    const AVRational base = input_->streams[packet.stream_index]->time_base;
    const std::int64_t start = input_->start_time != AV_NOPTS_VALUE ? input_->start_time : 0;
    end_ = std::max(end_, av_rescale_q(time + packet.duration, base, {1, AV_TIME_BASE}) - start);
}

void Decoder::checkLength() const {
    if (input_->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE) return;
    // Containers round, and some leave out the length of the last picture: only a clear shortfall counts.
    const double stated = static_cast<double>(input_->duration) / AV_TIME_BASE;
    const double end = static_cast<double>(end_) / AV_TIME_BASE;
    if (stated < 1.0 || end_ <= 0 || end >= 0.9 * stated - 0.5) return;
    char text[96] = "";
    std::snprintf(text, sizeof text, "ends after %.2f of %.2f seconds: the file is truncated", end, stated);
    fail(text);
}

void Decoder::fail(const std::string& what) const { throw Error(name_ + ": " + what); }

}  // namespace vantle
