#include "catalogue/door.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <optional>

namespace vantle {

namespace {

std::int64_t byteCount(std::int64_t pitch, std::int64_t height) {
    return pitch * std::max<std::int64_t>(height, 0);
}

/// The frames of a call, as far as they have been read. Handles that are null are asked nothing.
class Frames {
   public:
    explicit Frames(const Call& call) : call_(call) {
        if (call_.imgOut == nullptr) return;
        width_ = std::max(DIGetWidth(call_.imgOut), 0);
        height_ = std::max(DIGetHeight(call_.imgOut), 0);
        pitch_ = DIGetPitch(call_.imgOut);
    }

    void readPixels() {
        out_ = pixelsOf(call_.imgOut);
        from_ = pixelsOf(call_.imgFrom);
        to_ = pixelsOf(call_.imgTo);
    }

    void readBitCount() { bitCount_ = call_.imgOut != nullptr ? DIGetBitCount(call_.imgOut) : 0; }

    std::int32_t width() const { return width_; }
    std::int32_t height() const { return height_; }
    std::int32_t pitch() const { return pitch_; }

    /// True for rows that hold their pixels and frames below 2^31 bytes.
    bool areOfPossibleSize() const {
        return call_.imgOut != nullptr && pitch_ >= std::int64_t{4} * width_ &&
               byteCount(pitch_, height_) < std::int64_t{1} << 31;
    }

    /// What may be drawn on: nothing unless every frame is there and large enough for the output's geometry.
    std::optional<Stage> stage() const {
        if (out_ == nullptr || from_ == nullptr || to_ == nullptr) return {};
        if (bitCount_ != 32 || !areOfPossibleSize() || !holdsEnough(call_.imgFrom) ||
            !holdsEnough(call_.imgTo))
            return {};
        return Stage(width_, height_, pitch_, out_, from_, to_);
    }

   private:
    static std::uint8_t* pixelsOf(DIImage image) { return image != nullptr ? DIGetBits(image) : nullptr; }

    bool holdsEnough(DIImage image) const {
        return byteCount(DIGetPitch(image), DIGetHeight(image)) >= byteCount(pitch_, height_);
    }

    Call call_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::int32_t pitch_ = 0;
    std::int32_t bitCount_ = 0;
    std::uint8_t* out_ = nullptr;
    const std::uint8_t* from_ = nullptr;
    const std::uint8_t* to_ = nullptr;
};

/// No record is the first frame.
Progress progressOf(const TransParam* param) {
    return param != nullptr ? Progress(param->dDuration, param->dPosition) : Progress(1.0, 0.0);
}

}  // namespace

void draw(const Call& call, Effect& effect, const FrameChecks& checks) noexcept {
    Frames frames(call);
    frames.readPixels();
    if (checks.beforeBitCount != nullptr) checks.beforeBitCount(call);
    frames.readBitCount();
    if (checks.afterBitCount != nullptr) checks.afterBitCount(call);
    if (const std::optional<Stage> stage = frames.stage()) effect(*stage, progressOf(call.param));
}

void draw(const Call& call, Dissolve& dissolve) {
    Frames frames(call);
    frames.readBitCount();
    // A size that no frame can have leaves the order as it is: nothing will be drawn with another.
    if (frames.areOfPossibleSize())
        dissolve.fit(frames.width(), frames.height(), frames.pitch(), [] {
            std::srand(static_cast<unsigned>(std::time(nullptr)));
            return std::rand;
        });
    frames.readPixels();
    if (const std::optional<Stage> stage = frames.stage()) dissolve.draw(*stage, progressOf(call.param));
}

}  // namespace vantle
