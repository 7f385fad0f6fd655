#include "overview/sprite.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "media/encoder.h"

namespace vantle {

namespace {

constexpr int block = 16;  // of the compression, which lets neighbours within one share their colours
constexpr int largestSprite = 16383;  // of a WebP picture
// The first is hard to tell from the frame itself; the rest are for frames that would take too many bytes.
constexpr int qualities[] = {80, 70, 60, 50, 40, 30, 20, 10, 0};
// For each pixel of each frame. 45 transitions of 30 frames of 480 x 270 stay below 25 MB by it.
constexpr double mostBytes = 0.14;
// WebP's colours, whatever a picture says.
constexpr PictureFormat webpFormat{AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, AVCOL_RANGE_MPEG};

int inBlocks(int pixels) { return (pixels + block - 1) / block * block; }

/// Repeats the outermost values of the middle of a cell over its margin, in one plane of the picture.
void repeatEdges(std::uint8_t* cell, int stride, Size size, int margin, Size middle) {
    const auto line = [&](int y) { return cell + static_cast<std::ptrdiff_t>(y) * stride; };
    for (int y = margin; y < margin + middle.height; ++y) {
        const int end = margin + middle.width;
        std::fill_n(line(y), margin, line(y)[margin]);
        std::fill(line(y) + end, line(y) + size.width, line(y)[end - 1]);
    }
    for (int y = 0; y < size.height; ++y) {
        const int source = std::clamp(y, margin, margin + middle.height - 1);
        if (y != source) std::copy_n(line(source), size.width, line(y));
    }
}

}  // namespace

SpriteLayout::SpriteLayout(Size frameSize, int frames)
    : frame(frameSize),
      columns(static_cast<int>(std::ceil(std::sqrt(frames)))),
      rows((frames + columns - 1) / columns),
      cell{inBlocks(frame.width + 2 * margin), inBlocks(frame.height + 2 * margin)} {
    if (std::max(columns * cell.width, rows * cell.height) > largestSprite)
        throw UsageError(
            "the frames of one transition do not fit in a WebP picture; a smaller --size or fewer "
            "--positions help");
}

Sprite::Sprite(const SpriteLayout& layout)
    : layout_(layout),
      picture_(
          blankPicture({layout.columns * layout.cell.width, layout.rows * layout.cell.height}, webpFormat)) {
    for (const int plane : {0, 1, 2}) {
        const int height = plane == 0 ? picture_->height : picture_->height / 2;
        std::memset(picture_->data[plane], plane == 0 ? 16 : 128,
                    static_cast<std::size_t>(picture_->linesize[plane]) * static_cast<std::size_t>(height));
    }
}

void Sprite::set(int number, DIImage frame) {
    frames_ = std::max(frames_, number + 1);
    const int x = number % layout_.columns * layout_.cell.width;
    const int y = number / layout_.columns * layout_.cell.height;
    PixelView cells[2] = {viewOf(*picture_), viewOf(*picture_)};
    for (const int plane : {0, 1, 2}) {
        const int half = plane == 0 ? 1 : 2;
        const int stride = picture_->linesize[plane];
        const auto at = [&](int margin) {
            return static_cast<std::ptrdiff_t>((y + margin) / half) * stride + (x + margin) / half;
        };
        cells[0].data[plane] += at(0);
        cells[1].data[plane] += at(SpriteLayout::margin);
    }
    cells[1].width = layout_.frame.width;
    cells[1].height = layout_.frame.height;
    toPicture_.convert(viewOf(frame), cells[1]);
    for (const int plane : {0, 1, 2}) {
        const int half = plane == 0 ? 1 : 2;
        const auto part = [&](int pixels) { return (pixels + half - 1) / half; };
        repeatEdges(cells[0].data[plane], cells[0].stride[plane],
                    {part(layout_.cell.width), part(layout_.cell.height)}, SpriteLayout::margin / half,
                    {part(layout_.frame.width), part(layout_.frame.height)});
    }
}

std::string Sprite::encoded() const {
    const double room = mostBytes * frames_ * layout_.frame.width * layout_.frame.height;
    std::string file;
    for (const int quality : qualities) {
        file = encoded(quality);
        if (static_cast<double>(file.size()) <= room) break;
    }
    return file;
}

std::string Sprite::encoded(int quality) const {
    const AVCodec* const webp = avcodec_find_encoder_by_name("libwebp");
    if (webp == nullptr) throw Error("the FFmpeg libraries here have no encoder libwebp");
    Encoder encoder(*webp, {{"quality", std::to_string(quality)}, {"compression_level", "4"}},
                    [&](AVCodecContext& codec) {
                        codec.width = picture_->width;
                        codec.height = picture_->height;
                        codec.time_base = {1, 1};
                        codec.pix_fmt = webpFormat.pixels;
                        codec.colorspace = webpFormat.space;
                        codec.color_range = webpFormat.range;
                    });
    std::string file;
    const av::Frame picture = av::share(*picture_);
    picture->pts = 0;
    for (const AVFrame* const frame : {picture.get(), static_cast<AVFrame*>(nullptr)}) {
        encoder.send(frame);
        while (const av::Packet packet = encoder.receive())
            file.append(reinterpret_cast<const char*>(packet->data), static_cast<std::size_t>(packet->size));
    }
    return file;
}

}  // namespace vantle
