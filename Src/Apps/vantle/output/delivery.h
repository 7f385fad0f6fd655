/// Where a command's work goes.
#pragma once

#include <string>

namespace vantle {

struct Delivery {
    std::string output{};
    bool force = false;    ///< what the program made may be replaced
    bool quiet = false;    ///< nothing is told but errors
    std::string plugin{};  ///< the plug-in to draw with; empty for the installed one
};

}  // namespace vantle
