/// What FFmpeg's libraries call differently from 5.1 to 7.1.
#pragma once

#include <cstdint>
#include <vector>

#include "media/av.h"

namespace vantle::av {

/// How long a frame shows, in its stream's time base; 0 when unknown.
inline std::int64_t duration(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100)
    return frame.duration;
#else
    return frame.pkt_duration;
#endif
}

/// Whether a frame holds two moments, line by line.
inline bool isInterlaced(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(58, 7, 100)
    return (frame.flags & AV_FRAME_FLAG_INTERLACED) != 0;
#else
    return frame.interlaced_frame != 0;
#endif
}

/// What a stream's container says beside its packets, or null.
inline const std::uint8_t* streamSideData(const AVStream& stream, AVPacketSideDataType type) {
#if LIBAVFORMAT_VERSION_INT >= AV_VERSION_INT(60, 15, 100)
    const AVPacketSideData* const side =
        av_packet_side_data_get(stream.codecpar->coded_side_data, stream.codecpar->nb_coded_side_data, type);
    return side != nullptr ? side->data : nullptr;
#else
    return av_stream_get_side_data(&stream, type, nullptr);
#endif
}

/// Room for what a container is to say beside a stream's packets; null when there is no memory.
inline std::uint8_t* newSideData(AVStream& stream, AVPacketSideDataType type, std::size_t size) {
#if LIBAVFORMAT_VERSION_INT >= AV_VERSION_INT(60, 15, 100)
    AVPacketSideData* const side = av_packet_side_data_new(
        &stream.codecpar->coded_side_data, &stream.codecpar->nb_coded_side_data, type, size, 0);
    return side != nullptr ? side->data : nullptr;
#else
    return av_stream_new_side_data(&stream, type, size);
#endif
}

#if LIBAVCODEC_VERSION_INT >= AV_VERSION_INT(61, 13, 100)
/// What an encoder takes of one kind of setting; empty when it takes all.
template <typename Value>
std::vector<Value> supported(const AVCodec& codec, AVCodecConfig kind) {
    const void* values = nullptr;
    int count = 0;
    if (avcodec_get_supported_config(nullptr, &codec, kind, 0, &values, &count) < 0 || values == nullptr)
        return {};
    return {static_cast<const Value*>(values), static_cast<const Value*>(values) + count};
}
inline auto sampleRates(const AVCodec& codec) { return supported<int>(codec, AV_CODEC_CONFIG_SAMPLE_RATE); }
inline auto sampleFormats(const AVCodec& codec) {
    return supported<AVSampleFormat>(codec, AV_CODEC_CONFIG_SAMPLE_FORMAT);
}
inline auto pixelFormats(const AVCodec& codec) {
    return supported<AVPixelFormat>(codec, AV_CODEC_CONFIG_PIX_FORMAT);
}
#else
/// A list that ends with `end`; empty for none.
template <typename Value>
std::vector<Value> listed(const Value* values, Value end) {
    std::vector<Value> list;
    for (; values != nullptr && *values != end; ++values) list.push_back(*values);
    return list;
}
/// What an encoder takes; empty when it takes all.
inline auto sampleRates(const AVCodec& codec) { return listed(codec.supported_samplerates, 0); }
inline auto sampleFormats(const AVCodec& codec) { return listed(codec.sample_fmts, AV_SAMPLE_FMT_NONE); }
inline auto pixelFormats(const AVCodec& codec) { return listed(codec.pix_fmts, AV_PIX_FMT_NONE); }
#endif

}  // namespace vantle::av
