/// Streaming (non-temporal) stores, which go to memory past the caches. An ordinary store first reads the
/// cache line that it writes to: where frames are larger than the cache, that is a third of what drawing one
/// of them takes.
#pragma once

#include <cstdint>

#include "frame/pixels/processor.h"
#include "frame/pixels/run.h"

#if defined(__x86_64__) && !VANTLE_SANITIZED
#define VANTLE_STREAMS 1
#include <emmintrin.h>
#else
#define VANTLE_STREAMS 0
#endif

namespace vantle {

/// Whether large frames are drawn as if there were such stores: where there are, and where each store is
/// watched.
constexpr bool canStream = VANTLE_STREAMS != 0 || VANTLE_SANITIZED != 0;

/// Bytes of a cache line: only whole ones are worth streaming.
constexpr std::int32_t cacheLine = 64;
constexpr std::int32_t linePixels = cacheLine / 4;

/// Bytes of the smallest frame that is streamed: two of these and a third are more than what most processors
/// cache.
constexpr std::int64_t streamedFrame = std::int64_t{16} << 20;

/// Bytes of the smallest frame of which the next row is prefetched while one is worked out: smaller ones are
/// at hand.
constexpr std::int64_t prefetchedFrame = std::int64_t{4} << 20;

/// Pixels of the shortest run that is streamed. The ends of a run are not, and what else is written to its
/// row brings its lines into the cache: a shorter one loses.
constexpr std::int32_t shortestStreamed = 256;

/// Bytes from `address` on to where a cache line begins.
inline std::int32_t bytesToCacheLine(const std::uint8_t* address) {
    return static_cast<std::int32_t>(-reinterpret_cast<std::uintptr_t>(address) % cacheLine);
}

/// Whether a run goes past the caches. What keeps the byte 3 that it is drawn over has its lines at hand.
VANTLE_INLINE bool isStreamed(const Run& run, std::int32_t shortest = shortestStreamed) {
    return canStream && run.streamed && run.fourth != run.out && run.count >= shortest &&
           bytesToCacheLine(run.out) % 4 == 0;
}

/// Streams whole cache lines, `bytes` in all.
void streamLines(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes);

/// The same of bytes 0 to 2 of one pixel and byte 3 of another.
void streamMerged(std::uint8_t* out, const std::uint8_t* colours, const std::uint8_t* fourth,
                  std::int32_t bytes);

/// Copies bytes, those of whole cache lines past the caches where the frame is `streamed`.
void copyBytes(std::uint8_t* out, const std::uint8_t* in, std::int32_t count, bool streamed);

/// Has the cache line at an address brought into the L1 cache, and does not wait for it.
inline void prefetch(const std::uint8_t* address) {
    constexpr int toRead = 0;
    constexpr int nearest = 3;
    __builtin_prefetch(address, toRead, nearest);
    asm volatile("");  // keeps GCC from removing calls that only prefetch
}

/// Has whoever is told of what is stored from here on see what has been streamed.
inline void finishStreaming() {
#if VANTLE_STREAMS
    _mm_sfence();
#endif
}

}  // namespace vantle
