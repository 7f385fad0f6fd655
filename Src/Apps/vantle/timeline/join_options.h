/// What joining two inputs is asked for with.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "Host/error.h"
#include "media/canvas.h"

namespace vantle {

struct JoinOptions {
    std::string plugin;  ///< path of the plug-in; empty for the installed one
    std::string from;    ///< outgoing input
    std::string to;      ///< incoming input
    std::string output;
    double duration = 1.0;          ///< seconds of overlap
    std::optional<AVRational> fps;  ///< FROM's when absent
    Fit fit = Fit::contain;
    bool force = false;
    bool quiet = false;

    /// The overlap in frames. Throws UsageError when it is shorter than one.
    std::int64_t overlap(AVRational rate) const {
        const std::int64_t frames = std::llround(duration * av_q2d(rate));
        if (frames < 1) throw UsageError("--duration: shorter than one frame");
        return frames;
    }
};

}  // namespace vantle
