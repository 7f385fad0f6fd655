/// A frame of the image library, owned.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Brix_ImageProc/image.h"
#include "Host/error.h"

namespace vantle {

struct FreeImage {
    void operator()(DIImage image) const { DIFree(image); }
};

/// A `DIImage` that frees itself.
using Image = std::unique_ptr<void, FreeImage>;

/// A new frame of `width` x `height` pixels, all bytes 0; throws Error when it cannot be made.
inline Image makeImage(std::int32_t width, std::int32_t height) {
    Image image(DICreate(width, height));
    if (!image)
        throw Error("cannot make a frame of " + std::to_string(width) + "x" + std::to_string(height) +
                    " pixels");
    return image;
}

}  // namespace vantle
