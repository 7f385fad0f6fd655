/// Pixel formats: decoded pictures to frames of the image library and back, colours kept.
#pragma once

#include <cstdint>

#include "av.h"
#include "image.h"

namespace vantle {

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

/// A decoded picture.
PixelView viewOf(const AVFrame& frame);

/// A frame of the image library, stored bottom-up: its first line is the last in memory, so lines go back.
PixelView viewOf(DIImage image);

/// Converts between pictures of the same size; keeps its tables while the formats stay the same.
class Converter {
   public:
    /// `smoothChroma` interpolates halved chroma when it makes RGB (for pictures to look at); without it a
    /// trip to RGB and back leaves halved chroma as it was (for video).
    explicit Converter(bool smoothChroma) : smoothChroma_(smoothChroma) {}

    void convert(const PixelView& from, const PixelView& to);

   private:
    bool smoothChroma_;
    av::Scaler scaler_;
    PixelView lastFrom_{};
    PixelView lastTo_{};
};

}  // namespace vantle
