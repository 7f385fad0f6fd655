#include "frame/stage.h"

namespace vantle {

namespace {

std::int64_t byteCount(std::int64_t pitch, std::int64_t height) {
    return pitch * std::max<std::int64_t>(height, 0);
}

const std::uint8_t* pixelsOf(DIImage image) { return image != nullptr ? DIGetBits(image) : nullptr; }

}  // namespace

Stage::Stage(DIImage imgOut, DIImage imgFrom, DIImage imgTo)
    : imgOut_(imgOut), imgFrom_(imgFrom), imgTo_(imgTo) {
    if (imgOut_ != nullptr) {
        width_ = std::max(DIGetWidth(imgOut_), 0);
        height_ = std::max(DIGetHeight(imgOut_), 0);
        pitch_ = DIGetPitch(imgOut_);
        out_ = DIGetBits(imgOut_);
    }
    from_ = pixelsOf(imgFrom_);
    to_ = pixelsOf(imgTo_);
}

bool Stage::drawable() const {
    if (out_ == nullptr || from_ == nullptr || to_ == nullptr) return false;
    const std::int64_t bytes = byteCount(pitch_, height_);
    return DIGetBitCount(imgOut_) == 32 && pitch_ >= std::int64_t{4} * width_ &&
           bytes < std::int64_t{1} << 31 && byteCount(DIGetPitch(imgFrom_), DIGetHeight(imgFrom_)) >= bytes &&
           byteCount(DIGetPitch(imgTo_), DIGetHeight(imgTo_)) >= bytes;
}

}  // namespace vantle
