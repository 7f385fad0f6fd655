#include "frame/host_frames.h"

#include <algorithm>

namespace vantle {

namespace {

std::int64_t byteCount(std::int64_t pitch, std::int64_t height) {
    return pitch * std::max<std::int64_t>(height, 0);
}

std::uint8_t* pixelsOf(DIImage image) { return image != nullptr ? DIGetBits(image) : nullptr; }

}  // namespace

HostFrames::HostFrames(const Call& call) : call_(call) {
    if (call_.imgOut == nullptr) return;
    width_ = std::max(DIGetWidth(call_.imgOut), 0);
    height_ = std::max(DIGetHeight(call_.imgOut), 0);
    pitch_ = DIGetPitch(call_.imgOut);
}

void HostFrames::readPixels() {
    out_ = pixelsOf(call_.imgOut);
    from_ = pixelsOf(call_.imgFrom);
    to_ = pixelsOf(call_.imgTo);
}

void HostFrames::readBitCount() { bitCount_ = call_.imgOut != nullptr ? DIGetBitCount(call_.imgOut) : 0; }

bool HostFrames::areOfPossibleSize() const {
    return call_.imgOut != nullptr && pitch_ >= std::int64_t{4} * width_ &&
           byteCount(pitch_, height_) < std::int64_t{1} << 31;
}

std::optional<Stage> HostFrames::stage() const {
    if (out_ == nullptr || from_ == nullptr || to_ == nullptr) return {};
    if (bitCount_ != 32 || !areOfPossibleSize() || !holdsEnough(call_.imgFrom) || !holdsEnough(call_.imgTo))
        return {};
    return Stage(width_, height_, pitch_, out_, from_, to_);
}

bool HostFrames::holdsEnough(DIImage image) const {
    return byteCount(DIGetPitch(image), DIGetHeight(image)) >= byteCount(pitch_, height_);
}

}  // namespace vantle
