/// What a shell offers when its user asks it to complete a command line.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace vantle {

/// Prints what may stand in place of the last word, a line each, with a tab and a description where there is
/// one;
/// `<files>` stands for the names of files. `words` are those after the program's name.
void complete(const CLI::App& app, const std::vector<std::string>& words);

}  // namespace vantle
