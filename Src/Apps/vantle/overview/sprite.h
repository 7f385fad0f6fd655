/// All frames of a transition in one WebP picture, for a browser to show any of them at once.
#pragma once

#include <string>

#include "media/av.h"
#include "media/canvas.h"
#include "media/convert.h"

namespace vantle {

/// Where the frames of a sprite stand: row by row, each in a cell of its own.
struct SpriteLayout {
    /// For `frames` frames of this size. Throws UsageError when they are too large for one WebP picture.
    SpriteLayout(Size frameSize, int frames);

    Size frame;
    int columns = 1;
    int rows = 1;
    Size cell;
    /// From a cell's corner to its frame's. Around the frame its outermost pixels are repeated, so that the
    /// picture's compression never blends neighbours.
    static constexpr int margin = 8;
};

class Sprite {
   public:
    explicit Sprite(const SpriteLayout& layout);

    /// Puts a frame into cell `number`.
    void set(int number, DIImage frame);

    /// The WebP file, of the best quality that keeps it small enough for a page of them.
    std::string encoded() const;

   private:
    std::string encoded(int quality) const;

    SpriteLayout layout_;
    av::Frame picture_;
    int frames_ = 0;
    Converter toPicture_{true};
};

}  // namespace vantle
