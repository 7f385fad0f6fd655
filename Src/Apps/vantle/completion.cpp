#include "completion.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <string_view>

#include "Host/error.h"
#include "Host/plugin.h"

namespace vantle {

namespace {

constexpr std::string_view transitionsOf = "TRANSITION";

bool begins(std::string_view text, std::string_view with) {
    return text.size() >= with.size() &&
           std::equal(with.begin(), with.end(), text.begin(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

class Completion {
   public:
    Completion(const CLI::App& app, const std::vector<std::string>& words) : begun_(words.back()) {
        const CLI::App* command = &app;
        const CLI::Option* valued = nullptr;
        for (auto word = words.begin(); word != std::prev(words.end()); ++word) {
            if (valued != nullptr) {
                if (*word == "=") continue;  // of --fit=cover, in shells that divide it
                if (valued->check_lname("plugin")) plugin_ = *word;
                valued = nullptr;
                continue;
            }
            const auto called = [&](const CLI::App* next) { return next->check_name(*word); };
            if (const auto next = command->get_subcommands(called); !next.empty()) command = next.front();
            const CLI::Option* const option = command->get_option_no_throw(*word);
            if (option != nullptr && option->get_items_expected_max() > 0) valued = option;
        }
        if (begun_ == "=" && valued != nullptr) begun_.clear();
        if (const std::size_t middle = begun_.find('=');
            begun_.starts_with("--") && middle != std::string::npos) {
            valued = command->get_option_no_throw(begun_.substr(0, middle));
            if (valued == nullptr) return;
            before_ = begun_.substr(0, middle + 1);
            begun_.erase(0, middle + 1);
        }
        if (valued != nullptr) {
            offerValuesOf(*valued);
        } else if (begun_.starts_with('-')) {
            offerOptionsOf(*command);
        } else {
            for (const CLI::App* const next : command->get_subcommands({}))
                offer(next->get_name(), next->get_description());
            for (const CLI::Option* const option : command->get_options())
                if (option->get_positional()) offerValuesOf(*option);
        }
    }

   private:
    void offer(const std::string& word, const std::string& description = {}) const {
        if (begins(word, begun_))
            std::printf("%s%s%s%s\n", before_.c_str(), word.c_str(), description.empty() ? "" : "\t",
                        description.c_str());
    }

    void offerOptionsOf(const CLI::App& command) const {
        for (const CLI::Option* const option : command.get_options()) {
            for (const std::string& name : option->get_lnames())
                offer("--" + name, option->get_description());
            for (const std::string& name : option->get_snames()) offer("-" + name, option->get_description());
        }
    }

    /// Of a type such as FILE|+TRANSITION|+cut: kinds of values, and words.
    void offerValuesOf(const CLI::Option& option) {
        const std::string type = option.get_type_name();
        std::istringstream kinds(type.substr(0, type.find(':')));
        for (std::string kind; std::getline(kinds, kind, '|');) {
            // What stands between inputs is offered when its sign is there.
            const std::string sign = kind.starts_with('+') ? "+" : "";
            if (begun_.starts_with('+') == sign.empty() && option.get_positional()) continue;
            const std::string_view name = std::string_view(kind).substr(sign.size());
            if (name == transitionsOf)
                offerTransitions(sign);
            else if (name == "FILE")
                std::puts("<files>");
            else if (std::islower(static_cast<unsigned char>(name.front())) != 0)
                offer(kind);
        }
    }

    void offerTransitions(const std::string& sign) const {
        const Plugin plugin(plugin_);
        for (const Transition& transition : plugin.transitions())
            offer(sign + (transition.name.empty() ? transition.function : transition.name),
                  transition.sentence);
    }

    std::string before_;  ///< what of the last word is not a value's: "--fit="
    std::string begun_;
    std::string plugin_;
};

}  // namespace

void complete(const CLI::App& app, const std::vector<std::string>& words) {
    try {
        if (!words.empty()) Completion(app, words);
    } catch (const Error&) {  // a command line half written may name a plug-in that is none
    }
}

}  // namespace vantle
