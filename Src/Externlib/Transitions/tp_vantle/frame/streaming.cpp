#include "frame/streaming.h"

#include <algorithm>

#include "frame/multiversion.h"

#if VANTLE_LEVELS
#include <immintrin.h>
#endif

namespace vantle {

namespace {

constexpr std::int32_t colourBits = 0x00FFFFFF;

#if VANTLE_LEVELS

// By wide stores where there are any: narrow ones fill the processor's queue of stores, and what is to be
// loaded after them waits.

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

VANTLE_MULTIVERSION void copyPiece(std::uint8_t* out, const std::uint8_t* in, std::int32_t count) {
    // Half a line at a time is slower than what memcpy does.
    if (!registersHoldLines() || count < lineBytes) {
        std::memcpy(out, in, static_cast<std::size_t>(count));
        return;
    }
    std::memcpy(out, in, lineBytes);
    std::int32_t at = bytesToLine(out);
    for (; count - at >= lineBytes; at += lineBytes) std::memcpy(out + at, in + at, lineBytes);
    std::memcpy(out + count - lineBytes, in + count - lineBytes, lineBytes);
}

void streamBytes(std::uint8_t* out, const std::uint8_t* in, std::int32_t count) {
    const std::int32_t before = std::min(bytesToLine(out), count);
    const std::int32_t end = before + (count - before) / lineBytes * lineBytes;
    std::copy_n(in, before, out);
    store(out + before, in + before, end - before);
    std::copy_n(in + end, count - end, out + end);
}

}  // namespace vantle
