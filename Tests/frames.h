/// Frames for the tests: every byte of them is known, and every byte beyond them is out of reach.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "image.h"
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
    std::memcpy(data, content.data(), content.size());
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

/// The bytes of frame number `frame`, 0 to 3. At any one offset these four differ, so that a byte tells
/// which frame it came from.
inline Bytes contentOf(const Geometry& geometry, unsigned frame) {
    Bytes bytes(static_cast<std::size_t>(geometry.pitch) * static_cast<std::size_t>(geometry.height));
    for (std::uint32_t i = 0; i < bytes.size(); ++i) {
        const std::uint32_t hash = (i * 2654435761U ^ i * 2654435761U >> 15) * 2246822507U >> 8;
        bytes[i] = static_cast<std::uint8_t>(hash + frame * (1 + (hash >> 8) % 85));
    }
    return bytes;
}

/// Two input frames, read-only, and the output that a transition draws from them.
struct Scene {
    explicit Scene(const Geometry& g, Guard guard = Guard::after)
        : geometry(g), from(contentOf(g, 0)), to(contentOf(g, 1)), before(contentOf(g, 2)) {
        for (const auto& [bytes, protection] :
             {std::pair{before, PROT_READ | PROT_WRITE}, {from, PROT_READ}, {to, PROT_READ}}) {
            buffers.push_back(guarded(bytes, guard, protection));
            images.emplace_back(DIWrap(buffers.back().get(), g.width, g.height, g.pitch, 32));
        }
    }

    /// Draws over an output that holds the bytes `before`.
    Scene& draw(const std::function<TransFunc>& transition, const TransParam* at) {
        std::memcpy(buffers[0].get(), before.data(), before.size());
        transition(images[0].get(), images[1].get(), images[2].get(), at);
        out.assign(buffers[0].get(), buffers[0].get() + before.size());
        return *this;
    }
    Scene& draw(const std::function<TransFunc>& transition, double position, double duration = 1) {
        return draw(transition, param(position, duration).get());
    }

    /// Where the pixels of picture row `y` came from, as runs: "960t 960f" for 960 of imgTo, then 960 of
    /// imgFrom; k: as they were before the call, ?: none of these. Padding follows a bar, counted in bytes.
    std::string row(std::int32_t y) const {
        const std::ptrdiff_t start = std::ptrdiff_t{geometry.height - 1 - y} * geometry.pitch;
        const std::int32_t used = 4 * geometry.width;
        std::string text = runs(start, 4, geometry.width, 4);
        if (geometry.pitch > used) (text += " |") += runs(start + used, 1, geometry.pitch - used, 1);
        return text;
    }

    /// The same for the pixels of picture column `x`, from the top.
    std::string column(std::int32_t x) const {
        const std::ptrdiff_t top = std::ptrdiff_t{geometry.height - 1} * geometry.pitch;
        return runs(top + 4 * x, -geometry.pitch, geometry.height, 4);
    }

    char sourceOf(std::ptrdiff_t at, std::ptrdiff_t size) const {
        for (const auto& [source, bytes] : {std::pair{'f', &from}, {'t', &to}, {'k', &before}})
            if (std::equal(out.begin() + at, out.begin() + at + size, bytes->begin() + at)) return source;
        return '?';
    }

    std::string runs(std::ptrdiff_t at, std::ptrdiff_t step, std::int32_t count, std::ptrdiff_t size) const {
        std::string sources, text;
        for (std::int32_t i = 0; i < count; ++i) sources += sourceOf(at + i * step, size);
        for (std::size_t i = 0, end; i < sources.size(); i = end) {
            end = std::min(sources.find_first_not_of(sources[i], i), sources.size());
            if (i > 0) text += ' ';
            (text += std::to_string(end - i)) += sources[i];
        }
        return text;
    }

    const Geometry geometry;
    const Bytes from, to;
    Bytes before, out;
    std::vector<std::shared_ptr<std::uint8_t>> buffers;  // of imgOut, imgFrom, imgTo
    std::vector<vantle::Image> images;
};

using Lines = std::initializer_list<std::pair<std::int32_t, const char*>>;

/// Expects the runs of some rows (or columns) of what a transition draws at a position of 0..1.
inline void expectRows(const char* function, const Geometry& g, double position, Lines lines) {
    Scene scene(g);
    scene.draw(transition(function), position);
    for (const auto& [y, runs] : lines)
        EXPECT_EQ(scene.row(y), runs) << g.width << "x" << g.height << " row " << y;
}

inline void expectColumns(const char* function, const Geometry& g, double position, Lines lines) {
    Scene scene(g);
    scene.draw(transition(function), position);
    for (const auto& [x, runs] : lines)
        EXPECT_EQ(scene.column(x), runs) << g.width << "x" << g.height << " column " << x;
}

}  // namespace tests
