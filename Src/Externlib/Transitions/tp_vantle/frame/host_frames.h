/// The frames of a call, read from the host and checked.
#pragma once

#include <cstdint>
#include <optional>

#include "frame/call.h"
#include "frame/stage.h"

namespace vantle {

/// The frames of a call, as far as they have been read. Handles that are null are asked nothing.
class HostFrames {
   public:
    /// Reads width, height and pitch of the output.
    explicit HostFrames(const Call& call);

    void readPixels();
    void readBitCount();

    std::int32_t width() const { return width_; }
    std::int32_t height() const { return height_; }
    std::int32_t pitch() const { return pitch_; }

    /// True for rows that hold their pixels and frames below 2^31 bytes.
    bool areOfPossibleSize() const;

    /// What may be drawn on: nothing unless every frame is there and large enough for the output's geometry.
    std::optional<Stage> stage() const;

   private:
    bool holdsEnough(DIImage image) const;

    Call call_;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::int32_t pitch_ = 0;
    std::int32_t bitCount_ = 0;
    std::uint8_t* out_ = nullptr;
    const std::uint8_t* from_ = nullptr;
    const std::uint8_t* to_ = nullptr;
};

}  // namespace vantle
