#include "media/decoder.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "system/interrupt.h"

namespace vantle {

namespace {

bool isPicture(const AVFormatContext& container) {
    const std::string_view format = container.iformat->name;
    return format.ends_with("_pipe") || format == "image2";
}

}  // namespace

Decoder::Decoder(const AVStream& stream, std::string name, bool strict, int threads)
    : name_(std::move(name)), strict_(strict) {
    const AVCodecParameters& parameters = *stream.codecpar;
    const AVCodec* const decoder = avcodec_find_decoder(parameters.codec_id);
    if (decoder == nullptr) throw Error(name_ + ": no decoder for " + avcodec_get_name(parameters.codec_id));
    codec_.reset(av::check(avcodec_alloc_context3(decoder), name_));
    av::check(avcodec_parameters_to_context(codec_.get(), &parameters), name_);
    codec_->pkt_timebase = stream.time_base;
    codec_->thread_count = threads;
    if (strict_) codec_->err_recognition |= AV_EF_EXPLODE;
    av::check(avcodec_open2(codec_.get(), decoder, nullptr), name_);
}

void Decoder::send(const AVPacket* packet) { pass(avcodec_send_packet(codec_.get(), packet)); }

void Decoder::pass(int code) {
    if (code >= 0) return;
    if (strict_ || code == AVERROR(ENOMEM)) throw Error(name_ + ": " + av::message(code));
    ++damaged_;
}

av::Frame Decoder::receive() {
    av::Frame frame = av::makeFrame();
    constexpr int mostInARow = 100;  // a decoder that fails on and on has ended
    for (int i = 0; i < mostInARow; ++i) {
        const int code = avcodec_receive_frame(codec_.get(), frame.get());
        ended_ = code == AVERROR_EOF;
        if (ended_ || code == AVERROR(EAGAIN)) return nullptr;
        pass(code);
        if (code < 0) continue;
        const bool marred = frame->decode_error_flags != 0 || (frame->flags & AV_FRAME_FLAG_CORRUPT) != 0;
        damaged_ += marred ? 1 : 0;
        frame->pts = frame->best_effort_timestamp;
        return frame;
    }
    ended_ = true;
    return nullptr;
}

void Decoder::flush() {
    avcodec_flush_buffers(codec_.get());
    ended_ = false;
}

StreamReader::StreamReader(Demuxer& input, int stream, int threads)
    : input_(input),
      stream_(stream),
      decoder_(input.stream(stream), input.name(), isPicture(input.container()), threads) {
    input_.use(stream_);
}

av::Frame StreamReader::next() {
    Demuxer::Health& health = input_.health();
    while (!decoder_.ended()) {
        throwIfInterrupted();
        av::Frame frame = decoder_.receive();
        // The same damage may be noticed by both.
        const std::int64_t damaged = std::max(flagged_, decoder_.damaged());
        health.damaged += damaged - std::exchange(damaged_, damaged);
        if (frame) return frame;
        if (decoder_.ended()) break;
        const av::Packet packet = input_.read(stream_);
        if (packet) {
            if (av_packet_get_side_data(packet.get(), AV_PKT_DATA_ENCRYPTION_INFO, nullptr) != nullptr)
                throw Error(input_.name() + ": is encrypted");
            ++health.packets;
            flagged_ += (packet->flags & AV_PKT_FLAG_CORRUPT) != 0 ? 1 : 0;
        }
        decoder_.send(packet.get());
    }
    if (10 * health.damaged > health.packets)
        throw Error(input_.name() + ": " + std::to_string(health.damaged) + " of " +
                    std::to_string(health.packets) + " packets are damaged");
    return nullptr;
}

void StreamReader::flush() { decoder_.flush(); }

}  // namespace vantle
