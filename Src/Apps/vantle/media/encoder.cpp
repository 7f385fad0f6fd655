#include "media/encoder.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vantle {

Encoder::Encoder(const AVCodec& codec, const av::Options& options,
                 const std::function<void(AVCodecContext&)>& setUp)
    : name_("encoder " + std::string(codec.name)),
      context_(av::check(avcodec_alloc_context3(&codec), name_)) {
    context_->thread_count = 0;
    setUp(*context_);
    av::Dictionary settings(options);
    av::check(avcodec_open2(context_.get(), &codec, settings.get()), name_);
    if (const std::string unknown = settings.left(); !unknown.empty())
        throw UsageError(name_ + ": has no option " + unknown);
}

void Encoder::send(const AVFrame* frame) { av::check(avcodec_send_frame(context_.get(), frame), name_); }

av::Packet Encoder::receive() {
    av::Packet packet = av::makePacket();
    const int code = avcodec_receive_packet(context_.get(), packet.get());
    if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return nullptr;
    av::check(code, name_);
    return packet;
}

av::Options withUsersOptions(av::Options own, const av::Options& users) {
    // What encoders call the ways to say how many bits pictures may take.
    constexpr auto rateControls = std::to_array<std::string_view>(
        {"b", "ab", "bit_rate", "bitrate", "cbr", "cq", "cqp", "crf", "global_quality", "lossless", "q", "qp",
         "qscale", "quality", "rc", "rc-mode", "rc_mode", "vbr"});
    const auto controlsRate = [&](const auto& option) {
        return std::ranges::find(rateControls, option.first) != rateControls.end();
    };
    if (std::ranges::any_of(users, controlsRate)) std::erase_if(own, controlsRate);
    for (const auto& [key, value] : users) own.insert_or_assign(key, value);
    return own;
}

}  // namespace vantle
