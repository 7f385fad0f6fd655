#include "frame/streaming.h"

#include <algorithm>

#include "frame/multiversion.h"

#if VANTLE_LEVELS
#include <immintrin.h>
#endif

namespace vantle {

namespace {

#if VANTLE_STREAMS

// By wide stores where there are any: narrow ones fill the processor's queue of stores, and what is to be
// loaded after them waits.

#if VANTLE_LEVELS
__attribute__((target("arch=x86-64-v3"))) void store(std::uint8_t* out, const std::uint8_t* in,
                                                     std::int32_t bytes) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(bytes); at += sizeof(__m256i))
        _mm256_stream_si256(reinterpret_cast<__m256i*>(out + at),
                            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + at)));
}

__attribute__((target("default")))
#endif
void store(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) {
    for (std::size_t at = 0; at < static_cast<std::size_t>(bytes); at += sizeof(__m128i))
        _mm_stream_si128(reinterpret_cast<__m128i*>(out + at),
                         _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + at)));
}

#else

void store(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) { std::copy_n(in, bytes, out); }

#endif

}  // namespace

void streamLines(std::uint8_t* out, const std::uint8_t* in, std::int32_t bytes) { store(out, in, bytes); }

void streamBytes(std::uint8_t* out, const std::uint8_t* in, std::int32_t count) {
    const std::int32_t before = std::min(bytesToLine(out), count);
    const std::int32_t end = before + (count - before) / lineBytes * lineBytes;
    std::copy_n(in, before, out);
    store(out + before, in + before, end - before);
    std::copy_n(in + end, count - end, out + end);
}

}  // namespace vantle
