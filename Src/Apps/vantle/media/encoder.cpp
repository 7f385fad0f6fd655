#include "media/encoder.h"

extern "C" {
#include <libavutil/dict.h>
}

namespace vantle {

Encoder::Encoder(const char* name, AVCodecID id, const Options& options,
                 const std::function<void(AVCodecContext&)>& setUp)
    : name_("encoder " + std::string(name != nullptr ? name : avcodec_get_name(id))) {
    const AVCodec* const codec =
        name != nullptr ? avcodec_find_encoder_by_name(name) : avcodec_find_encoder(id);
    if (codec == nullptr) throw Error(name_ + ": not in the FFmpeg libraries here");
    context_.reset(av::check(avcodec_alloc_context3(codec), name_));
    context_->thread_count = 0;
    setUp(*context_);
    AVDictionary* settings = nullptr;
    for (const auto& [key, value] : options) av_dict_set(&settings, key.c_str(), value.c_str(), 0);
    const int code = avcodec_open2(context_.get(), codec, &settings);
    const AVDictionaryEntry* const unknown = av_dict_get(settings, "", nullptr, AV_DICT_IGNORE_SUFFIX);
    const std::string unknownKey = unknown != nullptr ? unknown->key : "";
    av_dict_free(&settings);
    av::check(code, name_);
    if (!unknownKey.empty()) throw UsageError(name_ + ": has no option " + unknownKey);
}

void Encoder::encode(const AVFrame* frame, const std::function<void(AVPacket&)>& sink) {
    av::check(avcodec_send_frame(context_.get(), frame), name_);
    for (;;) {
        const int code = avcodec_receive_packet(context_.get(), packet_.get());
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return;
        av::check(code, name_);
        sink(*packet_);
        av_packet_unref(packet_.get());
    }
}

}  // namespace vantle
