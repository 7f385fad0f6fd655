/// Pixel formats: decoded pictures to frames of the image library and back, colours kept.
#pragma once

#include <cstdint>

#include "Host/image.h"
#include "media/av.h"
#include "media/canvas.h"

namespace vantle {

/// How pixels are to be for a writer.
struct PictureFormat {
    AVPixelFormat pixels = AV_PIX_FMT_NONE;
    AVColorSpace space = AVCOL_SPC_RGB;
    AVColorRange range = AVCOL_RANGE_JPEG;
};

/// What an encoder of pictures takes.
inline PictureFormat pictureFormatOf(const AVCodecContext& encoder) {
    return {encoder.pix_fmt, encoder.colorspace, encoder.color_range};
}

/// A new picture for a writer, its pixels not set.
av::Frame blankPicture(Size size, const PictureFormat& format);

/// Pixels in memory with what is needed to understand their colours.
struct PixelView {
    std::uint8_t* data[4];
    int stride[4];
    int width;
    int height;
    AVPixelFormat format;
    AVColorSpace space;  ///< meaningful for YUV formats
    AVColorRange range;  ///< meaningful for YUV formats
};

/// True for pixels of red, green and blue, or of a palette of these.
bool isRgb(AVPixelFormat format);

inline Colours coloursOf(const AVFrame& picture) {
    return {picture.color_primaries, picture.color_trc, picture.colorspace, picture.color_range};
}

/// A decoded picture.
PixelView viewOf(const AVFrame& frame);

/// A frame of the image library, stored bottom-up: its first line is the last in memory, so lines go back.
PixelView viewOf(DIImage image);

/// Converts between pixel formats and sizes; keeps its tables while those stay the same.
class Converter {
   public:
    /// `smoothChroma` interpolates halved chroma when it makes RGB (for pictures to look at); without it a
    /// trip to RGB and back leaves halved chroma as it was (for video). `filter` is libswscale's, for sizes
    /// that differ.
    explicit Converter(bool smoothChroma, int filter = SWS_BICUBIC)
        : smoothChroma_(smoothChroma), filter_(filter) {}

    void convert(const PixelView& from, const PixelView& to);

   private:
    bool smoothChroma_;
    int filter_;
    av::Scaler scaler_;
    PixelView lastFrom_{};
    PixelView lastTo_{};
};

}  // namespace vantle
