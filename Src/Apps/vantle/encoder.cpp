#include "encoder.h"

extern "C" {
#include <libavutil/dict.h>
}

namespace vantle {

Encoder::Encoder(const char* name, AVCodecID id, Options options,
                 const std::function<void(AVCodecContext&)>& setUp)
    : name_(name != nullptr ? name : avcodec_get_name(id)) {
    const AVCodec* const codec =
        name != nullptr ? avcodec_find_encoder_by_name(name) : avcodec_find_encoder(id);
    if (codec == nullptr) throw Error("FFmpeg's libraries here have no encoder " + name_);
    context_.reset(av::check(avcodec_alloc_context3(codec), name_));
    context_->thread_count = 0;
    setUp(*context_);
    AVDictionary* settings = nullptr;
    for (const auto& [key, value] : options) av_dict_set(&settings, key, value, 0);
    const int code = avcodec_open2(context_.get(), codec, &settings);
    av_dict_free(&settings);
    av::check(code, "encoder " + name_);
}

void Encoder::encode(const AVFrame* frame, const std::function<void(AVPacket&)>& sink) {
    av::check(avcodec_send_frame(context_.get(), frame), "encoder " + name_);
    for (;;) {
        const int code = avcodec_receive_packet(context_.get(), packet_.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return;
        av::check(code, "encoder " + name_);
        sink(*packet_);
        av_packet_unref(packet_.get());
    }
}

}  // namespace vantle
