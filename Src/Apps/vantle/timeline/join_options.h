/// What every command that joins inputs is asked for with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Host/error.h"
#include "media/canvas.h"
#include "timeline/sequence.h"

namespace vantle {

struct JoinOptions {
    std::string plugin;  ///< path of the plug-in; empty for the installed one
    std::string output;
    Time duration{1.0, false};      ///< of the overlap
    std::optional<AVRational> fps;  ///< that of the inputs when absent
    Fit fit = Fit::contain;
    bool force = false;
    bool quiet = false;
};

}  // namespace vantle
