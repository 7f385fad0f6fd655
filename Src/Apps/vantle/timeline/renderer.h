/// Draws the pictures of a rendering and hands them to its writer.
#pragma once

#include <cstdint>

#include "Host/image.h"
#include "media/convert.h"
#include "output/writer.h"
#include "system/progress_bar.h"
#include "timeline/soundtrack.h"

namespace vantle {

/// Which pictures of a rendering are wanted, first and last, counted from 0.
struct FrameRange {
    std::int64_t first = 0;
    std::int64_t last = std::int64_t{1} << 40;  ///< far beyond any video, and countable in samples
};

/// Takes the pictures of a rendering in order: those of one input as they are, those of the overlap drawn by
/// the transition. Pictures outside the wanted range only count.
class Renderer {
   public:
    Renderer(TransFunc* transition, Size size, Writer& writer, Soundtrack* sound, FrameRange wanted,
             ProgressBar& progress);

    /// A picture of one input.
    void show(const AVFrame& picture);

    /// A picture of the overlap: the transition at `position` of `duration`.
    void mix(const AVFrame& from, const AVFrame& to, double position, double duration);

    /// True once every wanted picture is written.
    bool done() const { return next_ > wanted_.last; }

    std::int64_t written() const { return written_; }

   private:
    /// A picture of one input in the image library's form, converted only when it is another one.
    struct Side {
        Image image;
        Converter converter;
        av::Frame held;  // keeps the picture's memory, so that the same memory means the same picture
        DIImage load(const AVFrame& picture);
    };

    bool wanted() const { return next_ >= wanted_.first && next_ <= wanted_.last; }
    void write(av::Frame picture);
    void step();

    TransFunc* transition_;
    Size size_;
    Writer& writer_;
    Soundtrack* sound_;
    FrameRange wanted_;
    ProgressBar& progress_;
    Side from_;
    Side to_;
    Image out_;
    Converter toWriter_;
    std::int64_t next_ = 0;
    std::int64_t written_ = 0;
};

}  // namespace vantle
