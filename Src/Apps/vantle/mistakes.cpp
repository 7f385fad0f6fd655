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

const CLI::App* commandCalled(const CLI::App& app, const std::string& name) {
    const std::vector<const CLI::App*> commands = app.get_subcommands({});
    const auto found = std::ranges::find(commands, name, &CLI::App::get_name);
    return found != commands.end() ? *found : nullptr;
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
    const bool asksForHelp = !words.empty() && words.front() == "help";
    if (asksForHelp) {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    if (words.empty()) throw UsageError("a command is missing; " + listed(commands));
    const std::string& first = words.front();
    if (commandCalled(app, first) != nullptr || app.get_option_no_throw(first) != nullptr) return words;
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

std::string hintFor(const CLI::App& app, const std::vector<std::string>& words, const std::string& message) {
    const CLI::App* const command = words.empty() ? nullptr : commandCalled(app, words.front());
    for (const std::string& word : words) {
        const std::string written = "./" + word;
        if (word.find_first_of("+-") == 0 && isFile(word) && message.find(written) == std::string::npos)
            return " (a file of the name " + word + " is written " + written + ")";
        if (command == nullptr || !word.starts_with("--")) continue;
        const std::string name = word.substr(2, word.find('=') - 2);
        std::string nearest;
        std::size_t fewest = 3;
        for (const CLI::Option* const option : command->get_options())
            for (const std::string& known : option->get_lnames())
                if (const std::size_t edits = editsBetween(name, known); edits < fewest) {
                    fewest = edits;
                    nearest = known;
                }
        if (fewest > 0 && !nearest.empty()) return " (did you mean --" + nearest + "?)";
    }
    return {};
}

}  // namespace vantle
