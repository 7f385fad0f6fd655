#include "Brix_ImageProc/image.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

struct Frame {
    std::int32_t width;
    std::int32_t height;
    std::int32_t pitch;
    std::int32_t bitCount;
    std::uint8_t* bits;
    std::unique_ptr<std::uint8_t, Free> owned;
};

// A null handle reads as an empty frame.
const Frame& frameOf(DIImage image) {
    static const Frame none{};
    return image != nullptr ? *static_cast<const Frame*>(image) : none;
}

}  // namespace

DIImage DICreate(std::int32_t width, std::int32_t height) {
    constexpr std::int64_t rowAlignment = 64;
    if (width < 1 || height < 1) return nullptr;
    const std::int64_t pitch = (std::int64_t{4} * width + rowAlignment - 1) / rowAlignment * rowAlignment;
    const std::int64_t bytes = pitch * height;
    if (bytes >= std::int64_t{1} << 31) return nullptr;
    std::unique_ptr<std::uint8_t, Free> memory(static_cast<std::uint8_t*>(
        std::aligned_alloc(static_cast<std::size_t>(rowAlignment), static_cast<std::size_t>(bytes))));
    if (!memory) return nullptr;
    std::fill_n(memory.get(), bytes, std::uint8_t{0});
    std::uint8_t* const bits = memory.get();
    return new (std::nothrow)
        Frame{width, height, static_cast<std::int32_t>(pitch), 32, bits, std::move(memory)};
}

DIImage DIWrap(void* bits, std::int32_t width, std::int32_t height, std::int32_t pitch,
               std::int32_t bitCount) {
    return new (std::nothrow)
        Frame{width, height, pitch, bitCount, static_cast<std::uint8_t*>(bits), nullptr};
}

void DIFree(DIImage image) { delete static_cast<Frame*>(image); }

// Declared without an export mark, as a host's library is not this project's: exported here.
#pragma GCC visibility push(default)
std::int32_t DIGetWidth(DIImage image) { return frameOf(image).width; }
std::int32_t DIGetHeight(DIImage image) { return frameOf(image).height; }
std::int32_t DIGetPitch(DIImage image) { return frameOf(image).pitch; }
std::uint8_t* DIGetBits(DIImage image) { return frameOf(image).bits; }
std::int32_t DIGetBitCount(DIImage image) { return frameOf(image).bitCount; }
#pragma GCC visibility pop
