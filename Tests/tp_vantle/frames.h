/// Frames for the tests: every byte of them is known, and every byte beyond them is out of reach.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "Host/image.h"
#include "transition_table.h"

namespace tests {

using Bytes = std::vector<std::uint8_t>;

/// Which end of a buffer lies against an inaccessible page, so that one byte too far there is a fault.
enum class Guard { before, after };

/// A buffer that holds `content`, in pages of its own between two inaccessible ones.
inline std::shared_ptr<std::uint8_t> guarded(const Bytes& content, Guard guard, int protection) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t size = (content.size() + page - 1) / page * page;
    void* const whole =
        mmap(nullptr, size + 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (whole == MAP_FAILED) throw std::bad_alloc();
    auto* const first = static_cast<std::uint8_t*>(whole) + page;
    auto* const data = first + (guard == Guard::after ? size - content.size() : 0);
    std::copy(content.begin(), content.end(), data);
    mprotect(whole, size + 2 * page, PROT_NONE);
    mprotect(first, size, protection);
    return {data, [=](std::uint8_t*) { munmap(whole, size + 2 * page); }};
}

/// A read-only TransParam of no more than the bytes that the library may read.
inline std::shared_ptr<const TransParam> param(double position, double duration) {
    Bytes bytes(sizeof(TransParam), 0xA5);
    std::memcpy(&bytes[416], &duration, 8);
    std::memcpy(&bytes[424], &position, 8);
    const auto buffer = guarded(bytes, Guard::after, PROT_READ);
    return {buffer, reinterpret_cast<const TransParam*>(buffer.get())};
}

struct Geometry {
    std::int32_t width, height, pitch;
};

/// The bytes of frame number `frame`, 0 to 3. At any one offset these four differ by two or more, so that a
/// byte tells which frame it came from even when it has lost a level.
inline Bytes contentOf(const Geometry& geometry, unsigned frame) {
    Bytes bytes(static_cast<std::size_t>(geometry.pitch) * static_cast<std::size_t>(geometry.height));
    for (std::uint32_t i = 0; i < bytes.size(); ++i) {
        const std::uint32_t hash = (i * 2654435761U ^ i * 2654435761U >> 15) * 2246822507U >> 8;
        bytes[i] = static_cast<std::uint8_t>(hash + frame * (2 + (hash >> 8) % 84));
    }
    return bytes;
}

/// A frame with its rows in the opposite order.
inline Bytes turnedOver(const Bytes& frame, std::ptrdiff_t pitch) {
    Bytes turned;
    for (auto row = frame.end(); row != frame.begin(); row -= pitch)
        turned.insert(turned.end(), row - pitch, row);
    return turned;
}

using Pixel = std::array<std::uint8_t, 4>;

/// The bytes of a frame whose pixels are all the same.
inline Bytes filledWith(const Pixel& pixel, const Geometry& geometry) {
    Bytes bytes = contentOf(geometry, 0);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = pixel[i % static_cast<std::size_t>(geometry.pitch) % 4];
    return bytes;
}

/// What a host says of a frame that really has 5 x 4 pixels in rows of 20 bytes.
struct Claim {
    std::int32_t width = 5, height = 4, pitch = 20, bitCount = 32;
    bool handle = true, bits = true;
};

/// Two input frames, read-only, and the output that a transition draws from them.
struct Scene {
    explicit Scene(const Geometry& g, Guard guard = Guard::after)
        : Scene(g, contentOf(g, 0), contentOf(g, 1), guard) {}
    Scene(const Geometry& g, const Pixel& fromPixel, const Pixel& toPixel)
        : Scene(g, filledWith(fromPixel, g), filledWith(toPixel, g), Guard::after) {}
    Scene(const Geometry& g, Bytes fromBytes, Bytes toBytes, Guard guard)
        : geometry(g),
          from(std::move(fromBytes)),
          to(std::move(toBytes)),
          dimmed(to),
          before(contentOf(g, 2)) {
        for (std::uint8_t& byte : dimmed) byte = static_cast<std::uint8_t>(byte * 255 / 256);
        for (const auto& [bytes, protection] :
             {std::pair{before, PROT_READ | PROT_WRITE}, {from, PROT_READ}, {to, PROT_READ}}) {
            buffers.push_back(guarded(bytes, guard, protection));
            images.emplace_back(DIWrap(buffers.back().get(), g.width, g.height, g.pitch, 32));
        }
    }

    /// Draws over an output that holds the bytes `before`.
    Scene& draw(const std::function<TransFunc>& transition, const TransParam* at) {
        std::copy(before.begin(), before.end(), buffers[0].get());
        transition(images[0].get(), images[1].get(), images[2].get(), at);
        out.assign(buffers[0].get(), buffers[0].get() + before.size());
        return *this;
    }
    Scene& draw(const std::function<TransFunc>& transition, double position, double duration = 1) {
        return draw(transition, param(position, duration).get());
    }

    /// Draws under such claims of imgOut, imgFrom and imgTo, at one half unless said otherwise.
    Scene& drawUnder(const Claim (&claims)[3], const std::function<TransFunc>& transition,
                     const TransParam* at = param(0.5, 1).get()) {
        for (std::size_t i = 0; i < 3; ++i) {
            const auto& [width, height, pitch, bitCount, handle, bits] = claims[i];
            std::uint8_t* const pixels = bits ? buffers[i].get() : nullptr;
            images[i].reset(handle ? DIWrap(pixels, width, height, pitch, bitCount) : nullptr);
        }
        return draw(transition, at);
    }

    /// Where the pixels of picture row `y` came from, as runs: "960t 960f" for 960 of imgTo, then 960 of
    /// imgFrom; k: as they were before the call, d: imgTo dimmed by 255/256, ?: none of these. A second
    /// letter is the source of byte 3 where that has its own. Padding follows a bar, counted in bytes.
    std::string row(std::int32_t y) const {
        const std::ptrdiff_t start = std::ptrdiff_t{geometry.height - 1 - y} * geometry.pitch;
        const std::int32_t used = 4 * geometry.width;
        std::string text = runs(start, 4, geometry.width, 4);
        if (geometry.pitch > used) (text += " |") += runs(start + used, 1, geometry.pitch - used, 1);
        return text;
    }

    std::string sourceOf(std::ptrdiff_t at, std::ptrdiff_t size) const {
        const Bytes* const sources[] = {&from, &to, &before, &dimmed};
        for (std::size_t i = 0; i < 4; ++i)
            if (std::equal(out.begin() + at, out.begin() + at + size, sources[i]->begin() + at))
                return {"ftkd"[i]};
        return size == 4 ? sourceOf(at, 3) + sourceOf(at + 3, 1) : "?";
    }

    std::string runs(std::ptrdiff_t at, std::ptrdiff_t step, std::int32_t count, std::ptrdiff_t size) const {
        return runsOf(count, [&](std::int32_t i) { return sourceOf(at + i * step, size); });
    }

    /// The offset of the pixel in picture column `x` and picture row `y`.
    std::size_t offsetOf(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>((geometry.height - 1 - y) * geometry.pitch + 4 * x);
    }

    std::int32_t value(std::int32_t x, std::int32_t y, std::int32_t byte) const {
        return out[offsetOf(x, y) + static_cast<std::size_t>(byte)];
    }

    /// The values that one byte of the pixels has in a row, as runs: "2x255 1x0".
    std::string rowValues(std::int32_t y, std::int32_t byte) const {
        return runsOf(geometry.width, [&](auto x) { return 'x' + std::to_string(value(x, y, byte)); });
    }

    template <typename Label>
    static std::string runsOf(std::int32_t count, Label labelOf) {
        std::string text;
        for (std::int32_t i = 0, end; i < count; i = end) {
            const std::string label = labelOf(i);
            for (end = i + 1; end < count && labelOf(end) == label;) ++end;
            if (i > 0) text += ' ';
            (text += std::to_string(end - i)) += label;
        }
        return text;
    }

    const Geometry geometry;
    const Bytes from, to;
    Bytes dimmed, before, out;
    std::vector<std::shared_ptr<std::uint8_t>> buffers;  // of imgOut, imgFrom, imgTo
    std::vector<vantle::Image> images;
};

/// Expects the runs of some rows of what a transition draws at a position of 0..1.
inline void expectRows(const char* function, const Geometry& g, double position,
                       std::initializer_list<std::pair<std::int32_t, const char*>> rows) {
    Scene scene(g);
    scene.draw(transition(function), position);
    for (const auto& [y, runs] : rows)
        EXPECT_EQ(scene.row(y), runs) << g.width << "x" << g.height << " row " << y;
}

/// One byte of some pixels of row `y`, drawn from an imgFrom of 0 only and an imgTo of 255 only: of
/// a blended pixel, the weight of imgTo.
inline std::string weights(const char* function, int w, int h, double position, int y,
                           std::initializer_list<int> columns, int byte = 0) {
    Scene scene({w, h, 4 * w}, Pixel{0, 0, 0, 0}, Pixel{255, 255, 255, 255});
    scene.draw(transition(function), position);
    std::string text;
    for (const int x : columns) (text += ' ') += std::to_string(scene.value(x, y, byte));
    return text;
}

}  // namespace tests
