#include "timeline/source.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>

namespace vantle {

std::int64_t Source::frames(AVRational grid) const {
    // Saturating: a damaged file may state any length.
    const auto nearest = static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX);
    return std::max<std::int64_t>(av_rescale_q_rnd(length, timeBase, av_inv_q(grid), nearest), 1);
}

std::int64_t Source::startSample(int sampleRate) const {
    return av_rescale_q(firstTime, timeBase, {1, sampleRate});
}

}  // namespace vantle
