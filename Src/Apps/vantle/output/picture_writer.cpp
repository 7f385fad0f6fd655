#include "output/picture_writer.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "media/versions.h"

namespace vantle {

PictureWriter::PictureWriter(std::string name, Size size, bool overwrite)
    : name_(std::move(name)),
      overwrite_(overwrite),
      encoder_(*avcodec_find_encoder(pictureCodec(name_)), {}, [&](AVCodecContext& codec) {
          codec.width = size.width;
          codec.height = size.height;
          codec.time_base = {1, 1};
          std::vector<AVPixelFormat> formats = av::pixelFormats(*codec.codec);
          formats.push_back(AV_PIX_FMT_NONE);
          int loss = 0;
          codec.pix_fmt = avcodec_find_best_pix_fmt_of_list(formats.data(), AV_PIX_FMT_RGB24, 0, &loss);
          codec.color_range = AVCOL_RANGE_JPEG;
          codec.colorspace = isRgb(codec.pix_fmt) ? AVCOL_SPC_RGB : AVCOL_SPC_BT470BG;
          // For codecs with a quality scale: close to lossless.
          codec.flags |= AV_CODEC_FLAG_QSCALE;
          codec.global_quality = 2 * FF_QP2LAMBDA;
      }) {}

PictureFormat PictureWriter::format() const {
    const AVCodecContext& codec = encoder_.context();
    return {codec.pix_fmt, codec.colorspace, codec.color_range};
}

void PictureWriter::write(av::Frame picture, std::int64_t number) {
    const std::string numbered = numberedName(name_, number);
    // Its name is taken now, so that an output that may not be overwritten ends the rendering at once.
    files_.emplace_back(numbered.empty() ? name_ : numbered, overwrite_);
    // One lock stands for all: thousands of files cannot be open at once.
    if (files_.size() > 1) files_.back().unlock();
    picture->pict_type = AV_PICTURE_TYPE_NONE;
    picture->quality = encoder_.context().global_quality;
    picture->pts = static_cast<std::int64_t>(files_.size()) - 1;
    encode(picture.get());
}

void PictureWriter::finish() {
    encode(nullptr);
    for (StagedFile& file : files_) file.commit();
}

void PictureWriter::encode(const AVFrame* picture) {
    encoder_.send(picture);
    while (const av::Packet packet = encoder_.receive()) {
        const StagedFile& file = files_.at(written_++);
        errno = 0;
        std::ofstream out(file.path(), std::ios::binary);
        out.write(reinterpret_cast<const char*>(packet->data), packet->size);
        out.close();
        if (!out)
            throw Error("cannot write " + file.target().string() + ": " +
                        std::generic_category().message(errno));
    }
}

AVCodecID pictureCodec(const std::string& name) {
    const AVOutputFormat* const format = av_guess_format(nullptr, name.c_str(), nullptr);
    if (format == nullptr || std::string_view(format->name) != "image2") return AV_CODEC_ID_NONE;
    const AVCodecID codec = av_guess_codec(format, nullptr, name.c_str(), nullptr, AVMEDIA_TYPE_VIDEO);
    return avcodec_find_encoder(codec) != nullptr ? codec : AV_CODEC_ID_NONE;
}

std::string numberedName(const std::string& pattern, std::int64_t number) {
    std::array<char, 4096> name{};
    const int code = av_get_frame_filename(name.data(), static_cast<int>(name.size()), pattern.c_str(),
                                           static_cast<int>(number));
    return code >= 0 ? name.data() : std::string();
}

std::vector<std::filesystem::path> pictureNames(const std::string& pattern, std::int64_t first,
                                                std::int64_t end) {
    std::vector<std::filesystem::path> names;
    for (std::int64_t number = first; number < end; ++number)
        names.emplace_back(numberedName(pattern, number));
    return names;
}

}  // namespace vantle
