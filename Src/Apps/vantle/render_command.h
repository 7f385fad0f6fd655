/// `vantle render`: turns two inputs and a transition into an output.
#pragma once

#include <CLI/App.hpp>

namespace vantle {

/// Adds the command to the command line; it runs when it is given.
void addRenderCommand(CLI::App& app);

}  // namespace vantle
