#include "mistakes.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "Host/error.h"
#include "Host/words.h"

namespace vantle {

namespace {

bool isFile(const std::string& word) {
    std::error_code ignored;  // a generated source may be too long for a name
    return std::filesystem::exists(word, ignored);
}

/// As "the commands are render, sheet, gallery and list".
std::string listed(const std::vector<const CLI::App*>& commands) {
    std::string text = "the commands are ";
    for (std::size_t i = 0; i < commands.size(); ++i)
        text += (i == 0 ? "" : i + 1 < commands.size() ? ", " : " and ") + commands[i]->get_name();
    return text;
}

}  // namespace

std::vector<std::string> wordsToRead(const CLI::App& app, std::vector<std::string> words) {
    const std::vector<const CLI::App*> commands = app.get_subcommands({});
    const auto isCommand = [&](const std::string& word) {
        return std::ranges::find(commands, word, &CLI::App::get_name) != commands.end();
    };
    const bool asksForHelp = !words.empty() && words.front() == "help";
    if (asksForHelp) {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    if (words.empty()) throw UsageError("a command is missing; " + listed(commands));
    const std::string& first = words.front();
    if (isCommand(first) || app.get_option_no_throw(first) != nullptr) return words;
    const auto edits = [&](const CLI::App* command) { return editsBetween(first, command->get_name()); };
    const CLI::App* const nearest = *std::ranges::min_element(commands, {}, edits);
    if (edits(nearest) <= 2 && !isFile(first))
        throw UsageError("no command is called \"" + first + "\"; did you mean " + nearest->get_name() + "?");
    // What stands there is most likely what a film is to be made of.
    if (!asksForHelp && (isFile(first) || first.find_first_of(".:-") != std::string::npos))
        throw UsageError("the command is missing before " + first + ", such as render, which makes a film; " +
                         listed(commands));
    throw UsageError("no command is called \"" + first + "\"; " + listed(commands));
}

std::string hintOnFiles(const std::vector<std::string>& words, const std::string& message) {
    for (const std::string& word : words) {
        if (word.find_first_of("+-") != 0 || !isFile(word)) continue;
        const std::string written = "./" + word;
        if (message.find(written) == std::string::npos)
            return " (a file of the name " + word + " is written " + written + ")";
    }
    return {};
}

}  // namespace vantle
