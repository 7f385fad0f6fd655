#include "output/movie_writer.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <utility>

#include "media/filters.h"
#include "media/muxer.h"
#include "media/versions.h"
#include "output/staged_file.h"

namespace vantle {

namespace {

using Option = std::pair<const char*, const char*>;

// No loss that one sees, at the encoders' usual effort.
constexpr Option h264[] = {{"preset", "medium"}, {"crf", "18"}};
constexpr Option vp9[] = {
    {"b", "0"}, {"crf", "24"}, {"deadline", "good"}, {"cpu-used", "4"}, {"row-mt", "1"}};

constexpr MovieKind kinds[] = {
    {".mp4", "mp4", "libx264", h264, AV_PIX_FMT_YUV420P, "aac"},
    {".mov", "mov", "libx264", h264, AV_PIX_FMT_YUV420P, "aac"},
    {".mkv", "matroska", "libx264", h264, AV_PIX_FMT_YUV420P, "aac"},
    {".webm", "webm", "libvpx-vp9", vp9, AV_PIX_FMT_YUV420P, "libopus"},
    {".gif", "gif", "gif", {}, AV_PIX_FMT_PAL8, nullptr},
};

/// The rate nearest to `wanted` that an encoder takes.
int supportedRate(const AVCodec& codec, int wanted) {
    const std::vector<int> rates = av::sampleRates(codec);
    if (rates.empty()) return wanted;
    return *std::ranges::min_element(rates, {}, [&](int rate) { return std::abs(rate - wanted); });
}

class MovieWriter final : public Writer {
   public:
    MovieWriter(const MovieKind& kind, const WriterOptions& options)
        : file_(options.name, options.overwrite),
          muxer_(file_.path().string(), kind.muxer, options.name),
          video_(
              kind.videoEncoder, AV_CODEC_ID_NONE,
              withUsersOptions({kind.videoOptions.begin(), kind.videoOptions.end()}, options.encoderOptions),
              [&](AVCodecContext& codec) { setUpVideo(codec, kind, options); }),
          videoStream_(muxer_.add(video_.context())) {
        // A format of 256 colours: each picture gets a palette of its own.
        if (kind.pixels == AV_PIX_FMT_PAL8)
            palette_.emplace(
                *blankPicture(options.canvas.size, rgb), AVRational{1, 1000},
                std::vector<Filter>{{"split"},
                                    {"palettegen", {{"stats_mode", "single"}, {"reserve_transparent", "0"}}},
                                    {"paletteuse", {{"new", "1"}}, {1, 2}}});
        if (options.soundSampleRate && kind.soundEncoder != nullptr) {
            sound_.emplace(kind.soundEncoder, AV_CODEC_ID_NONE, av::Options{},
                           [&](AVCodecContext& codec) { setUpSound(codec, *options.soundSampleRate); });
            soundStream_ = &muxer_.add(sound_->context());
        }
        const bool quickTime = kind.ending == ".mp4" || kind.ending == ".mov";
        muxer_.start(quickTime ? av::Options{{"movflags", "+faststart"}} : av::Options{});
    }

    PictureFormat pictureFormat() const override {
        if (palette_) return rgb;
        const AVCodecContext& codec = video_.context();
        return {codec.pix_fmt, codec.colorspace, codec.color_range};
    }

    std::optional<SoundFormat> soundFormat() const override {
        if (!sound_) return {};
        const AVCodecContext& codec = sound_->context();
        return SoundFormat{codec.sample_rate, codec.sample_fmt, codec.ch_layout.nb_channels,
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
            if (!picture) throw Error("no palette for a picture of " + file_.target().string());
            picture->pts = time;
        }
        encode(video_, videoStream_, picture.get());
    }

    void writeSound(av::Frame samples) override {
        samples->pts = samples_;
        samples_ += samples->nb_samples;
        encode(*sound_, *soundStream_, samples.get());
    }

    void finish() override {
        encode(video_, videoStream_, nullptr);
        if (sound_) encode(*sound_, *soundStream_, nullptr);
        muxer_.finish();
        file_.commit();
    }

   private:
    void setUpVideo(AVCodecContext& codec, const MovieKind& kind, const WriterOptions& options) {
        codec.width = options.canvas.size.width;
        codec.height = options.canvas.size.height;
        codec.pix_fmt = kind.pixels;
        codec.sample_aspect_ratio = {1, 1};
        codec.framerate = options.canvas.rate;
        codec.time_base = av_inv_q(options.canvas.rate);
        if (kind.pixels != AV_PIX_FMT_PAL8) {
            const AVFrame& like = *options.colours;
            const bool high = codec.height >= 720;
            codec.color_range = AVCOL_RANGE_MPEG;
            codec.colorspace = like.colorspace != AVCOL_SPC_RGB ? like.colorspace
                               : high                           ? AVCOL_SPC_BT709
                                                                : AVCOL_SPC_SMPTE170M;
            codec.color_primaries = like.color_primaries;
            codec.color_trc = like.color_trc;
        }
        if (muxer_.wantsGlobalHeaders()) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }

    void setUpSound(AVCodecContext& codec, int rate) {
        codec.sample_rate = supportedRate(*codec.codec, rate);
        codec.sample_fmt = av::sampleFormats(*codec.codec).at(0);
        codec.bit_rate = 192'000;
        codec.time_base = {1, codec.sample_rate};
        av_channel_layout_default(&codec.ch_layout, 2);
        if (muxer_.wantsGlobalHeaders()) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }

    void encode(Encoder& encoder, const AVStream& stream, const AVFrame* frame) {
        encoder.encode(frame, [&](AVPacket& packet) {
            if (packet.duration == 0 && &stream == &videoStream_) packet.duration = 1;
            muxer_.write(packet, stream, encoder.context().time_base);
        });
    }

    static constexpr PictureFormat rgb{AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};

    StagedFile file_;
    Muxer muxer_;
    Encoder video_;
    AVStream& videoStream_;
    std::optional<Encoder> sound_;
    AVStream* soundStream_ = nullptr;
    std::optional<Filters> palette_;
    std::int64_t pictures_ = 0;
    std::int64_t samples_ = 0;
};

}  // namespace

const MovieKind* movieKind(std::string_view ending) {
    const auto* const kind = std::ranges::find(kinds, ending, &MovieKind::ending);
    return kind != std::end(kinds) ? kind : nullptr;
}

std::unique_ptr<Writer> makeMovieWriter(const MovieKind& kind, const WriterOptions& options) {
    return std::make_unique<MovieWriter>(kind, options);
}

}  // namespace vantle
