#include "frame/pixels/streaming.h"

#include <algorithm>
#include <cstring>

#if VANTLE_LEVELS
#include <immintrin.h>
#endif

namespace vantle {

namespace {

[[maybe_unused]] constexpr std::int32_t colourBits = 0x00FFFFFF;

#if VANTLE_LEVELS

// By wide stores where there are any: narrow ones fill the processor's store buffer, and later loads wait.

VANTLE_WIDE_LEVEL __m256i wide(const std::uint8_t* in) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
}

VANTLE_WIDE_LEVEL void store(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) {
    for (std::ptrdiff_t at = 0; at < bytes; at += sizeof(__m256i))
        _mm256_stream_si256(reinterpret_cast<__m256i*>(out + at), wide(in + at));
}

VANTLE_WIDE_LEVEL void merge(std::uint8_t* out, const std::uint8_t* colours, const std::uint8_t* fourth,
                             std::int32_t bytes) {
    const __m256i mask = _mm256_set1_epi32(colourBits);
    for (std::ptrdiff_t at = 0; at < bytes; at += sizeof(__m256i))
        _mm256_stream_si256(reinterpret_cast<__m256i*>(out + at),
                            _mm256_or_si256(_mm256_and_si256(mask, wide(colours + at)),
                                            _mm256_andnot_si256(mask, wide(fourth + at))));
}

#endif

#if VANTLE_STREAMS

__m128i narrow(const std::uint8_t* in) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(in)); }

VANTLE_BASE_LEVEL void store(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) {
    for (std::ptrdiff_t at = 0; at < bytes; at += sizeof(__m128i))
        _mm_stream_si128(reinterpret_cast<__m128i*>(out + at), narrow(in + at));
}

VANTLE_BASE_LEVEL void merge(std::uint8_t* out, const std::uint8_t* colours, const std::uint8_t* fourth,
                             std::int32_t bytes) {
    const __m128i mask = _mm_set1_epi32(colourBits);
    for (std::ptrdiff_t at = 0; at < bytes; at += sizeof(__m128i))
        _mm_stream_si128(reinterpret_cast<__m128i*>(out + at),
                         _mm_or_si128(_mm_and_si128(mask, narrow(colours + at)),
                                      _mm_andnot_si128(mask, narrow(fourth + at))));
}

#else

void store(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) { std::copy_n(in, bytes, out); }

void merge(std::uint8_t* out, const std::uint8_t* colours, const std::uint8_t* fourth, std::int32_t bytes) {
    for (std::int32_t i = 0; i < bytes; ++i) out[i] = i % 4 == 3 ? fourth[i] : colours[i];
}

#endif

}  // namespace

void streamLines(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) { store(out, in, bytes); }

void streamMerged(std::uint8_t* out, const std::uint8_t* colours, const std::uint8_t* fourth,
                  std::int32_t bytes) {
    merge(out, colours, fourth, bytes);
}

/// A cache line at a time. What one overlaps of another is copied twice.
VANTLE_MULTIVERSION static void copyLines(std::uint8_t* out, const std::uint8_t* in, std::int32_t count) {
    std::memcpy(out, in, cacheLine);
    std::int32_t at = bytesToCacheLine(out);
    for (; count - at >= cacheLine; at += cacheLine) std::memcpy(out + at, in + at, cacheLine);
    std::memcpy(out + count - cacheLine, in + count - cacheLine, cacheLine);
}

static void copyStreamed(std::uint8_t* out, const std::uint8_t* in, std::int32_t count) {
    const std::int32_t first = bytesToCacheLine(out);
    const std::int32_t end = first + (count - first) / cacheLine * cacheLine;
    std::copy_n(in, first, out);
    store(out + first, in + first, end - first);
    std::copy_n(in + end, count - end, out + end);
}

void copyBytes(std::uint8_t* out, const std::uint8_t* in, std::int32_t count, bool streamed) {
    // memcpy takes long to begin where two frames lie at like places of their pages. Lines in halves are no
    // faster.
    constexpr std::int32_t shortCopy = 6 * 1024;
    if (canStream && streamed && count >= 4 * shortestStreamed)
        copyStreamed(out, in, count);
    else if (hasAvx512() && !streamed && count >= cacheLine && count <= shortCopy)
        copyLines(out, in, count);
    else
        std::memcpy(out, in, static_cast<std::size_t>(count));
}

}  // namespace vantle
