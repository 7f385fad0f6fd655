/// How fast the pictures of a source follow each other.
#pragma once

#include <cstdint>
#include <vector>

extern "C" {
#include <libavutil/rational.h>
}

namespace vantle {

/// The pictures a second that these times mean, in units of `timeBase` and in any order: by the median step,
/// with those that differ from it, or from a multiple, by no more than a container's rounding or a camera's
/// jitter, and a standard rate where that is near. Missing, late and doubled pictures do not count. 0/1 for
/// fewer than two pictures.
AVRational paceOf(std::vector<std::int64_t> times, AVRational timeBase);

}  // namespace vantle
