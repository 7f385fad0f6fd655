/// How `--help` is written, from which the manual is made.
#pragma once

#include <CLI/App.hpp>

namespace vantle {

/// Has a command line and all its commands show their options as manuals do: `-o, --output FILE`, with bounds
/// and default in the description.
void showLikeManual(CLI::App& app);

}  // namespace vantle
