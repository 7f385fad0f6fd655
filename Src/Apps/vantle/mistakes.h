/// What people mistype on a command line, answered with what they may mean.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace vantle {

/// The words of a command line to read, `help render` turned to `render --help`. Throws UsageError when they
/// begin with no command.
std::vector<std::string> wordsToRead(const CLI::App& app, std::vector<std::string> words);

/// What to add to the message about a command line that makes no sense: how to write a file whose name was
/// read as something else, or the option that is called nearly like a word of it. Empty when there is none,
/// or `message` says it.
std::string hintFor(const CLI::App& app, const std::vector<std::string>& words, const std::string& message);

}  // namespace vantle
