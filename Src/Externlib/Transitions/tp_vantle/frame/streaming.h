/// Stores that go to memory past the cache. An ordinary one first reads the line that it writes to: where
/// frames are larger than the cache that is a third of the time that two of them take to become one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define VANTLE_STREAMS 1
#include <emmintrin.h>
#else
#define VANTLE_STREAMS 0
#endif

#include "frame/multiversion.h"

namespace vantle {

/// Whether there are such stores: elsewhere all go through the cache.
constexpr bool canStream = VANTLE_STREAMS != 0;

/// A line of memory: only whole ones are worth it.
constexpr std::int32_t lineBytes = 64;
constexpr std::int32_t linePixels = lineBytes / 4;

/// Bytes from `address` on to where a line begins.
inline std::int32_t bytesToLine(const std::uint8_t* address) {
    return static_cast<std::int32_t>(-reinterpret_cast<std::uintptr_t>(address) % lineBytes);
}

/// Stores a line where one begins.
VANTLE_INLINE void streamLine(std::uint8_t* out, const std::uint8_t* line) {
#if VANTLE_STREAMS
    for (std::size_t at = 0; at < lineBytes; at += sizeof(__m128i))
        _mm_stream_si128(reinterpret_cast<__m128i*>(out + at),
                         _mm_load_si128(reinterpret_cast<const __m128i*>(line + at)));
#else
    std::copy_n(line, lineBytes, out);
#endif
}

/// Has whoever is told of what is stored from here on see what has been streamed.
inline void finishStreaming() {
#if VANTLE_STREAMS
    _mm_sfence();
#endif
}

}  // namespace vantle
