/// Draws what a film shows.
#pragma once

#include <memory>

#include "Host/image.h"
#include "media/convert.h"
#include "playing/film_reader.h"

namespace vantle {

/// The pictures of one input in the image library's format, converted only where the picture is another.
class ImageLoader {
   public:
    ImageLoader(Size size, bool smoothChroma) : size_(size), converter_(smoothChroma) {}

    /// What is loaded next takes the place of this one, unless somebody keeps it.
    std::shared_ptr<const Image> load(const AVFrame& picture);

   private:
    Size size_;
    std::shared_ptr<Image> image_;
    Converter converter_;
    av::Frame held_;  // keeps the picture's memory, so that the same memory means the same picture
};

/// Draws a moment of a join, or of a fade of the film, onto `out`.
void draw(const Moment& moment, ImageLoader& from, ImageLoader& to, DIImage out);

/// Turns moments of a film into pictures for a writer: those of one input as they are, those of a join drawn
/// by its transition, and where the film fades dimmed.
class Painter {
   public:
    Painter(Size size, const PictureFormat& format);

    av::Frame paint(const Moment& moment);

   private:
    Size size_;
    PictureFormat format_;
    ImageLoader from_;
    ImageLoader to_;
    Image out_;
    Converter toFormat_;
};

}  // namespace vantle
