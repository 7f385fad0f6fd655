/// Stores that go to memory past the cache. An ordinary one first reads the line that it writes to: where
/// frames are larger than the cache that is a third of the time that two of them take to become one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/multiversion.h"

#if defined(__x86_64__) && !VANTLE_SANITIZED
#define VANTLE_STREAMS 1
#include <emmintrin.h>
#else
#define VANTLE_STREAMS 0
#endif

namespace vantle {

/// Whether large frames are drawn as if there were such stores: where there are, and where each is watched.
constexpr bool canStream = VANTLE_STREAMS != 0 || VANTLE_SANITIZED != 0;

/// A line of memory: only whole ones are worth it.
constexpr std::int32_t lineBytes = 64;
constexpr std::int32_t linePixels = lineBytes / 4;

/// Bytes from `address` on to where a line begins.
inline std::int32_t bytesToLine(const std::uint8_t* address) {
    return static_cast<std::int32_t>(-reinterpret_cast<std::uintptr_t>(address) % lineBytes);
}

/// What is drawn past the cache: merges are pixels of two frames that are not mixed, which take no time but
/// memory's.
enum class PastCache : std::uint8_t { nothing, merges, everything };

/// The same of a row of a frame of `frameBytes`, of which `rest` are still to be drawn.
constexpr PastCache pastCache(std::int64_t frameBytes, std::int64_t rest) {
    // Two frames of this size and a third are more than what most processors keep at hand.
    constexpr std::int64_t largeFrame = std::int64_t{16} << 20;
    if (frameBytes >= largeFrame) return PastCache::everything;
    // Where the cache holds such frames, who reads what was drawn past it waits for memory. What is drawn
    // last, which of pictures stored bottom-up is read first, goes through the cache.
    constexpr std::int64_t readSoon = std::int64_t{9} << 19;
    return rest >= readSoon ? PastCache::merges : PastCache::nothing;
}

/// Bytes of a frame from which on the next row is fetched while one is computed: smaller ones are at hand.
constexpr std::int64_t fetchedFrame = std::int64_t{4} << 20;

/// Pixels of the shortest run that is drawn past the cache. The ends of a run are not, and what else is
/// written to its row draws its lines into the cache: a shorter one loses.
constexpr std::int32_t shortestRun = 256;

/// Stores lines past the cache, `bytes` in all, from where one begins.
void streamLines(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes);

/// The same of bytes 0 to 2 of one pixel and byte 3 of another.
void streamMerged(std::uint8_t* out, const std::uint8_t* colours, const std::uint8_t* fourth,
                  std::int32_t bytes);

/// Copies bytes past the cache, but for the ends that are no whole lines.
void streamBytes(std::uint8_t* out, const std::uint8_t* in, std::int32_t count);

/// Bytes up to which a copy is made line by line, if by one store each, in frames whose merges are drawn past
/// the cache: beside these the processor's own copying, which memcpy leaves it to, takes long to begin.
constexpr std::int32_t shortCopy = 6 * 1024;

/// Copies up to that many bytes.
void copyPiece(std::uint8_t* out, const std::uint8_t* in, std::int32_t count);

/// Copies bytes, past the cache where everything is drawn so.
inline void copyBytes(std::uint8_t* out, const std::uint8_t* in, std::int32_t count, PastCache pastCache) {
    if (canStream && pastCache == PastCache::everything && count >= 4 * shortestRun)
        streamBytes(out, in, count);
    else if (pastCache == PastCache::merges && count <= shortCopy)
        copyPiece(out, in, count);
    else
        std::memcpy(out, in, static_cast<std::size_t>(count));
}

/// Bytes of a run that are fetched ahead of what is being drawn: of three frames the nearest cache, which may
/// be one of 32 KB, has room for twice as much.
constexpr std::int32_t fetchedAhead = 4096;

/// Has the line of memory that `address` lies in brought into the nearest cache, and does not wait for it.
inline void fetchLine(const std::uint8_t* address) {
    constexpr int toRead = 0;
    constexpr int nearestCache = 3;
    __builtin_prefetch(address, toRead, nearestCache);
    asm volatile("");  // a function that does no more would be taken for one that does nothing, and left out
}

/// Has whoever is told of what is stored from here on see what has been streamed.
inline void finishStreaming() {
#if VANTLE_STREAMS
    _mm_sfence();
#endif
}

}  // namespace vantle
