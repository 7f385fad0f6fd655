#include "output/movie_kind.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "media/convert.h"
#include "media/versions.h"

namespace vantle {

namespace {

constexpr MovieKind kinds[] = {
    {".mp4", "mp4", "libx264", "aac"},      {".mov", "mov", "libx264", "aac"},
    {".mkv", "matroska", "libx264", "aac"}, {".webm", "webm", "libvpx-vp9", "libopus"},
    {".gif", "gif", "gif", nullptr},        {".webp", "webp", "libwebp_anim", nullptr},
};

/// The encoder that was asked for, or the kind's own.
const AVCodec& encoderFor(const std::string& asked, const char* own, AVMediaType type, const char* option) {
    const AVCodec* const codec = avcodec_find_encoder_by_name(asked.empty() ? own : asked.c_str());
    if (codec == nullptr || codec->type != type)
        throw UsageError(std::string(option) + ": \"" + (asked.empty() ? own : asked) +
                         "\" is no such encoder of the FFmpeg libraries here");
    return *codec;
}

const AVCodec& videoEncoder(const MovieKind& kind, const EncoderNames& encoders) {
    return encoderFor(encoders.video, kind.videoEncoder, AVMEDIA_TYPE_VIDEO, "--encoder");
}

const AVCodec& audioEncoder(const MovieKind& kind, const EncoderNames& encoders) {
    return encoderFor(encoders.audio, kind.audioEncoder, AVMEDIA_TYPE_AUDIO, "--audio-encoder");
}

/// What players take best, where the encoder knows it, else what is nearest to it.
AVPixelFormat pixelsFor(const AVCodec& encoder) {
    std::vector<AVPixelFormat> formats = av::pixelFormats(encoder);
    if (encoder.id == AV_CODEC_ID_GIF) return AV_PIX_FMT_PAL8;
    if (formats.empty() || std::ranges::find(formats, AV_PIX_FMT_YUV420P) != formats.end())
        return AV_PIX_FMT_YUV420P;
    // Frames in a graphics card's memory are not to be had here.
    std::erase_if(formats, [](AVPixelFormat format) {
        return (av_pix_fmt_desc_get(format)->flags & AV_PIX_FMT_FLAG_HWACCEL) != 0;
    });
    if (formats.empty())
        throw UsageError(std::string("--encoder: ") + encoder.name +
                         " takes pictures from a graphics card's memory only, where none are drawn");
    formats.push_back(AV_PIX_FMT_NONE);
    int loss = 0;
    return avcodec_find_best_pix_fmt_of_list(formats.data(), AV_PIX_FMT_YUV420P, 0, &loss);
}

void checkHeld(const MovieKind& kind, const AVCodec& encoder, const char* option) {
    if (avformat_query_codec(av_guess_format(kind.muxer, nullptr, nullptr), encoder.id,
                             FF_COMPLIANCE_EXPERIMENTAL) != 1)
        throw UsageError(std::string(option) + ": " + std::string(kind.ending) + " does not hold what " +
                         encoder.name + " makes; .mkv holds almost everything");
}

/// The rate nearest to `wanted` that an encoder takes.
int supportedRate(const AVCodec& codec, int wanted) {
    const std::vector<int> rates = av::sampleRates(codec);
    if (rates.empty()) return wanted;
    return *std::ranges::min_element(rates, {}, [&](int rate) { return std::abs(rate - wanted); });
}

void describeColours(AVCodecContext& codec, Colours like) {
    if (isRgb(codec.pix_fmt)) {
        codec.color_range = AVCOL_RANGE_JPEG;
        codec.colorspace = AVCOL_SPC_RGB;
    } else if (codec.codec_id == AV_CODEC_ID_WEBP) {  // whose colours are these, whatever a file says
        codec.color_range = AVCOL_RANGE_MPEG;
        codec.colorspace = AVCOL_SPC_SMPTE170M;
    } else {
        // HDR becomes ordinary colours.
        if (like.hdr()) like = {AVCOL_PRI_BT709, AVCOL_TRC_BT709, AVCOL_SPC_BT709, AVCOL_RANGE_MPEG};
        // Pictures from cameras and screens, as JPEG has them too.
        const bool isJpeg = like.range == AVCOL_RANGE_JPEG && like.space == AVCOL_SPC_BT470BG;
        if (like.space == AVCOL_SPC_RGB || isJpeg) {
            like.space = AVCOL_SPC_UNSPECIFIED;
            if (like.primaries == AVCOL_PRI_UNSPECIFIED) like.primaries = AVCOL_PRI_BT709;
            if (like.transfer == AVCOL_TRC_UNSPECIFIED) like.transfer = AVCOL_TRC_BT709;
        }
        like = completed(like, codec.height);
        codec.color_range = AVCOL_RANGE_MPEG;
        codec.colorspace = like.space;
        codec.color_primaries = like.primaries;
        codec.color_trc = like.transfer;
    }
}

}  // namespace

av::Options usualOptions(std::string_view encoder) {
    if (encoder == "libx264") return {{"preset", "medium"}, {"crf", "18"}};
    if (encoder == "libx265")
        return {{"preset", "medium"}, {"crf", "20"}, {"x265-params", "log-level=error"}};
    if (encoder == "libvpx-vp9")
        return {{"b", "0"}, {"crf", "24"}, {"deadline", "good"}, {"cpu-used", "4"}, {"row-mt", "1"}};
    if (encoder == "libwebp_anim") return {{"quality", "80"}};
    if (encoder == "libsvtav1") return {{"crf", "28"}, {"preset", "8"}};
    return {};
}

const MovieKind* movieKind(std::string_view ending) {
    const auto* const kind = std::ranges::find(kinds, ending, &MovieKind::ending);
    return kind != std::end(kinds) ? kind : nullptr;
}

bool halvesChroma(const MovieKind& kind, const EncoderNames& encoders) {
    const AVCodec& video = videoEncoder(kind, encoders);
    checkHeld(kind, video, "--encoder");
    if (kind.audioEncoder != nullptr) checkHeld(kind, audioEncoder(kind, encoders), "--audio-encoder");
    const AVPixFmtDescriptor& pixels = *av_pix_fmt_desc_get(pixelsFor(video));
    return pixels.log2_chroma_w > 0 || pixels.log2_chroma_h > 0;
}

std::unique_ptr<Encoder> makeVideoEncoder(const MovieKind& kind, const EncoderNames& encoders,
                                          const Canvas& canvas, const Colours& colours,
                                          const av::Options& options, bool globalHeaders) {
    const AVCodec& encoder = videoEncoder(kind, encoders);
    return std::make_unique<Encoder>(encoder, withUsersOptions(usualOptions(encoder.name), options),
                                     [&](AVCodecContext& codec) {
                                         codec.width = canvas.size.width;
                                         codec.height = canvas.size.height;
                                         codec.pix_fmt = pixelsFor(encoder);
                                         codec.sample_aspect_ratio = {1, 1};
                                         codec.framerate = canvas.rate;
                                         codec.time_base = av_inv_q(canvas.rate);
                                         describeColours(codec, colours);
                                         if (globalHeaders) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
                                     });
}

std::unique_ptr<Encoder> makeAudioEncoder(const MovieKind& kind, const EncoderNames& encoders,
                                          const AudioParameters& wish, std::int64_t bitRate,
                                          bool globalHeaders) {
    const AVCodec& encoder = audioEncoder(kind, encoders);
    return std::make_unique<Encoder>(encoder, av::Options{}, [&](AVCodecContext& codec) {
        constexpr std::int64_t bitsPerChannel = 96'000;
        codec.sample_rate = supportedRate(encoder, wish.sampleRate);
        codec.sample_fmt = av::sampleFormats(encoder).at(0);
        codec.bit_rate = std::max(bitsPerChannel * std::max(wish.channels, 2), bitRate);
        codec.time_base = {1, codec.sample_rate};
        av_channel_layout_default(&codec.ch_layout, wish.channels);
        if (globalHeaders) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    });
}

av::Options muxerOptions(const MovieKind& kind) {
    if (kind.ending == ".mp4" || kind.ending == ".mov") return {{"movflags", "+faststart"}};
    if (kind.ending == ".webp") return {{"loop", "0"}};  // over and over again, as a GIF
    return {};
}

}  // namespace vantle
