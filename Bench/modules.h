/// The modules for other editors, as they draw for their hosts.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Module {
    std::string function;  ///< exported name of the plug-in's own
    std::string file;

    /// A function that draws frames of this size at a position 0 to 1.
    std::function<void(double position, const std::uint8_t* from, const std::uint8_t* to, std::uint8_t* out)>
    instance(std::int32_t width, std::int32_t height) const;
};

/// Those of this build.
std::vector<Module> allModules();

}  // namespace bench
