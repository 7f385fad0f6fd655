#include "output/movie_writer.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "media/filters.h"
#include "media/muxer.h"
#include "media/versions.h"
#include "output/staged_file.h"

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

bool isRgb(AVPixelFormat format) {
    return (av_pix_fmt_desc_get(format)->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
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

class MovieWriter final : public Writer {
   public:
    MovieWriter(const MovieKind& kind, const WriterOptions& options)
        : file_(options.name == "-"
                    ? std::nullopt
                    : std::optional<StagedFile>(std::in_place, options.name, options.overwrite)),
          muxer_(file_ ? "file:" + file_->path().string() : "pipe:1", kind.muxer,
                 file_ ? options.name : "standard output"),
          video_(videoEncoder(kind, options.encoders),
                 withUsersOptions(usualOptions(videoEncoder(kind, options.encoders).name),
                                  options.encoderOptions),
                 [&](AVCodecContext& codec) { setUpVideo(codec, options); }),
          videoStream_(muxer_.add(video_.context())) {
        // A format of 256 colours: each picture gets a palette of its own.
        if (video_.context().pix_fmt == AV_PIX_FMT_PAL8)
            palette_.emplace(
                *blankPicture(options.canvas.size, rgb), AVRational{1, 1000},
                std::vector<Filter>{{"split"},
                                    {"palettegen", {{"stats_mode", "single"}, {"reserve_transparent", "0"}}},
                                    {"paletteuse", {{"new", "1"}}, {1, 2}}});
        if (options.audio && kind.audioEncoder != nullptr) {
            audio_ = makeAudioEncoder(kind, options.encoders, *options.audio, 0, muxer_.wantsGlobalHeaders());
            audioStream_ = &muxer_.add(audio_->context());
        }
        muxer_.start(muxerOptions(kind));
    }

    PictureFormat pictureFormat() const override {
        if (palette_) return rgb;
        const AVCodecContext& codec = video_.context();
        return {codec.pix_fmt, codec.colorspace, codec.color_range};
    }

    std::optional<AudioFormat> audioFormat() const override {
        if (!audio_) return {};
        const AVCodecContext& codec = audio_->context();
        return AudioFormat{codec.sample_rate, codec.sample_fmt, codec.ch_layout.nb_channels,
                           codec.frame_size};
    }

    void write(av::Frame picture, std::int64_t /*number*/) override {
        // What a decoder noted of its own picture types is not for the encoder to follow.
        picture->pict_type = AV_PICTURE_TYPE_NONE;
        picture->pts = pictures_++;
        if (palette_) {
            const std::int64_t time = picture->pts;
            palette_->push(std::move(picture));
            picture = palette_->pull();
            if (!picture) throw Error("no palette for a picture");
            picture->pts = time;
        }
        encode(video_, videoStream_, picture.get());
    }

    void writeAudio(av::Frame samples) override {
        samples->pts = samples_;
        samples_ += samples->nb_samples;
        encode(*audio_, *audioStream_, samples.get());
    }

    void finish() override {
        encode(video_, videoStream_, nullptr);
        if (audio_) encode(*audio_, *audioStream_, nullptr);
        muxer_.finish();
        if (file_) file_->commit();
    }

   private:
    void setUpVideo(AVCodecContext& codec, const WriterOptions& options) {
        codec.width = options.canvas.size.width;
        codec.height = options.canvas.size.height;
        codec.pix_fmt = pixelsFor(*codec.codec);
        codec.sample_aspect_ratio = {1, 1};
        codec.framerate = options.canvas.rate;
        codec.time_base = av_inv_q(options.canvas.rate);
        if (isRgb(codec.pix_fmt)) {
            codec.color_range = AVCOL_RANGE_JPEG;
            codec.colorspace = AVCOL_SPC_RGB;
        } else if (codec.codec_id == AV_CODEC_ID_WEBP) {  // whose colours are these, whatever a file says
            codec.color_range = AVCOL_RANGE_MPEG;
            codec.colorspace = AVCOL_SPC_SMPTE170M;
        } else {
            const AVFrame& like = *options.colours;
            const bool high = codec.height >= 720;
            const bool wide = isHdr(like);  // which becomes ordinary colours
            codec.color_range = AVCOL_RANGE_MPEG;
            codec.colorspace = wide                               ? AVCOL_SPC_BT709
                               : like.colorspace != AVCOL_SPC_RGB ? like.colorspace
                               : high                             ? AVCOL_SPC_BT709
                                                                  : AVCOL_SPC_SMPTE170M;
            codec.color_primaries = wide ? AVCOL_PRI_BT709 : like.color_primaries;
            codec.color_trc = wide ? AVCOL_TRC_BT709 : like.color_trc;
        }
        if (muxer_.wantsGlobalHeaders()) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }

    void encode(Encoder& encoder, const AVStream& stream, const AVFrame* frame) {
        encoder.send(frame);
        while (const av::Packet packet = encoder.receive()) {
            if (packet->duration == 0 && &stream == &videoStream_) packet->duration = 1;
            muxer_.write(*packet, stream, encoder.context().time_base);
        }
    }

    static constexpr PictureFormat rgb{AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};

    std::optional<StagedFile> file_;  // none for standard output
    Muxer muxer_;
    Encoder video_;
    AVStream& videoStream_;
    std::unique_ptr<Encoder> audio_;
    AVStream* audioStream_ = nullptr;
    std::optional<Filters> palette_;
    std::int64_t pictures_ = 0;
    std::int64_t samples_ = 0;
};

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

std::unique_ptr<Writer> makeMovieWriter(const MovieKind& kind, const WriterOptions& options) {
    return std::make_unique<MovieWriter>(kind, options);
}

}  // namespace vantle
