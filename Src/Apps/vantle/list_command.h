/// `vantle list`: shows the transitions of a plug-in.
#pragma once

#include <CLI/App.hpp>

namespace vantle {

/// Adds the command to the command line; it runs when it is given.
void addListCommand(CLI::App& app);

}  // namespace vantle
