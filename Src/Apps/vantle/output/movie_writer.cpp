#include "output/movie_writer.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

#include <algorithm>
#include <utility>

#include "media/filters.h"
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

struct CloseOutput {
    void operator()(AVFormatContext* output) const {
        avio_closep(&output->pb);
        avformat_free_context(output);
    }
};

/// The rate nearest to `wanted` that an encoder takes.
int supportedRate(const AVCodec& codec, int wanted) {
    if (codec.supported_samplerates == nullptr) return wanted;
    int best = 0;
    for (const int* rate = codec.supported_samplerates; *rate != 0; ++rate)
        if (best == 0 || std::abs(*rate - wanted) < std::abs(best - wanted)) best = *rate;
    return best;
}

class MovieWriter final : public Writer {
   public:
    MovieWriter(const MovieKind& kind, const WriterOptions& options)
        : file_(options.name, options.overwrite), writing_("cannot write " + options.name) {
        AVFormatContext* output = nullptr;
        const std::string url = "file:" + file_.path().string();
        av::check(avformat_alloc_output_context2(&output, nullptr, kind.muxer, url.c_str()), writing_);
        output_.reset(output);
        av::check(avio_open(&output->pb, url.c_str(), AVIO_FLAG_WRITE), writing_);

        Encoder::Options settings = options.encoderOptions;
        settings.insert(kind.videoOptions.begin(), kind.videoOptions.end());  // the user's own stay
        video_.emplace(kind.videoEncoder, AV_CODEC_ID_NONE, settings,
                       [&](AVCodecContext& codec) { setUpVideo(codec, kind, options); });
        videoStream_ = addStream(*video_);
        videoStream_->avg_frame_rate = options.canvas.rate;
        // A format of 256 colours: each picture gets a palette of its own.
        if (kind.pixels == AV_PIX_FMT_PAL8) {
            const Size size = options.canvas.size;
            palette_.emplace(AVMEDIA_TYPE_VIDEO,
                             std::vector{"video_size=" + std::to_string(size.width) + "x" +
                                         std::to_string(size.height) + ":pix_fmt=bgra:time_base=1/1000"},
                             "[in0]split[a][b];[a]palettegen=stats_mode=single:reserve_transparent=0[p];"
                             "[b][p]paletteuse=new=1[out]");
        }
        if (options.soundSampleRate && kind.soundEncoder != nullptr) {
            sound_.emplace(kind.soundEncoder, AV_CODEC_ID_NONE, Encoder::Options{},
                           [&](AVCodecContext& codec) { setUpSound(codec, *options.soundSampleRate); });
            soundStream_ = addStream(*sound_);
        }
        AVDictionary* muxing = nullptr;
        if (kind.ending == ".mp4" || kind.ending == ".mov") av_dict_set(&muxing, "movflags", "+faststart", 0);
        const int code = avformat_write_header(output, &muxing);
        av_dict_free(&muxing);
        av::check(code, writing_);
    }

    PictureFormat pictureFormat() const override {
        if (palette_) return {AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};
        const AVCodecContext& codec = video_->context();
        return {codec.pix_fmt, codec.colorspace, codec.color_range};
    }

    std::optional<SoundFormat> soundFormat() const override {
        if (!sound_) return {};
        const AVCodecContext& codec = sound_->context();
        return SoundFormat{codec.sample_rate, codec.sample_fmt, "stereo", codec.frame_size};
    }

    void write(av::Frame picture, std::int64_t /*number*/) override {
        // What a decoder noted of its own picture types is not for the encoder to follow.
        picture->pict_type = AV_PICTURE_TYPE_NONE;
        picture->pts = pictures_++;
        if (palette_) {
            const std::int64_t time = picture->pts;
            palette_->push(0, std::move(picture));
            picture = palette_->pull();
            if (!picture) throw Error(writing_ + ": no palette for a picture");
            picture->pts = time;
        }
        encode(*video_, *videoStream_, picture.get());
    }

    void writeSound(av::Frame samples) override {
        samples->pts = samples_;
        samples_ += samples->nb_samples;
        encode(*sound_, *soundStream_, samples.get());
    }

    void finish() override {
        encode(*video_, *videoStream_, nullptr);
        if (sound_) encode(*sound_, *soundStream_, nullptr);
        av::check(av_write_trailer(output_.get()), writing_);
        av::check(output_->pb->error, writing_);
        av::check(avio_closep(&output_->pb), writing_);
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
        if ((output_->oformat->flags & AVFMT_GLOBALHEADER) != 0) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }

    void setUpSound(AVCodecContext& codec, int rate) {
        codec.sample_rate = supportedRate(*codec.codec, rate);
        codec.sample_fmt = codec.codec->sample_fmts[0];
        codec.bit_rate = 192'000;
        codec.time_base = {1, codec.sample_rate};
        av_channel_layout_default(&codec.ch_layout, 2);
        if ((output_->oformat->flags & AVFMT_GLOBALHEADER) != 0) codec.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }

    AVStream* addStream(const Encoder& encoder) {
        AVStream* const stream = av::check(avformat_new_stream(output_.get(), nullptr), writing_);
        av::check(avcodec_parameters_from_context(stream->codecpar, &encoder.context()), writing_);
        stream->time_base = encoder.context().time_base;
        return stream;
    }

    void encode(Encoder& encoder, const AVStream& stream, const AVFrame* frame) {
        encoder.encode(frame, [&](AVPacket& packet) {
            packet.stream_index = stream.index;
            if (packet.duration == 0 && &stream == videoStream_) packet.duration = 1;
            av_packet_rescale_ts(&packet, encoder.context().time_base, stream.time_base);
            av::check(av_interleaved_write_frame(output_.get(), &packet), writing_);
        });
    }

    StagedFile file_;
    std::string writing_;
    std::unique_ptr<AVFormatContext, CloseOutput> output_;
    std::optional<Encoder> video_;
    std::optional<Encoder> sound_;
    std::optional<Filters> palette_;
    AVStream* videoStream_ = nullptr;
    AVStream* soundStream_ = nullptr;
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
