#include <cstring>

#include "frame/pixels/driver.h"

namespace vantle {

namespace {

/// By value: what is stored may alias a run that is referred to.
VANTLE_INLINE void merge(Run run, const std::uint8_t* colours) {
    for (std::int32_t i = 0; i < run.count; ++i)
        words(run.out)[i] = withFourth(words(colours)[i], words(run.fourth)[i]);
}

}  // namespace

/// Past the caches without a tile in between: memory is all that it waits for.
static void streamMerge(const Run& run, const std::uint8_t* colours) {
    const std::int32_t first = bytesToCacheLine(run.out) / 4;
    const std::int32_t count = (run.count - first) / linePixels * linePixels;
    merge(part(run, 0, first), colours);
    const Run lines = part(run, first, count);
    streamMerged(lines.out, colours + std::ptrdiff_t{4} * first, lines.fourth, 4 * count);
    const std::int32_t end = first + count;
    merge(part(run, end, run.count - end), colours + std::ptrdiff_t{4} * end);
}

VANTLE_MULTIVERSION void copy(const Run& run, const std::uint8_t* pixels) {
    if (run.fourth == nullptr || run.fourth == pixels)
        copyBytes(run.out, pixels, 4 * run.count, run.streamed);
    else if (isStreamed(run))
        streamMerge(run, pixels);
    else
        merge(run, pixels);
}

}  // namespace vantle
