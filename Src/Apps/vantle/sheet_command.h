/// `vantle sheet`: many transitions on one picture.
#pragma once

#include <CLI/App.hpp>

namespace vantle {

/// Adds the command to the command line; it runs when it is given.
void addSheetCommand(CLI::App& app);

}  // namespace vantle
