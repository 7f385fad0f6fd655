#include "list_command.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

#include "Host/fades.h"
#include "Host/plugin.h"
#include "Host/words.h"

namespace vantle {

namespace {

const char* orDash(const std::string& text) { return text.empty() ? "-" : text.c_str(); }

nlohmann::ordered_json orNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

void listJson(const std::vector<Transition>& transitions) {
    auto rows = nlohmann::ordered_json::array();
    for (const Transition& transition : transitions) {
        nlohmann::ordered_json row;
        row["index"] = transition.index ? nlohmann::ordered_json(*transition.index) : nullptr;
        row["name"] = orNull(transition.name);
        row["function"] = orNull(transition.function);
        row["family"] = transition.family;
        row["guid"] = orNull(transition.guid);
        row["sentence"] = orNull(transition.sentence);
        rows.push_back(row);
    }
    std::puts(rows.dump(2).c_str());
}

struct ListOptions {
    std::string plugin;
    std::vector<std::string> search;
    bool json = false;
};

/// Writes index, name, function, family, GUID and sentence of the transitions that are looked for to standard
/// output.
void list(const ListOptions& options) {
    const Plugin loaded(options.plugin);
    std::string search;
    for (const std::string& word : options.search) search += (search.empty() ? "" : " ") + word;
    const auto foundIn = [&](std::span<const Transition> transitions) {
        std::vector<Transition> found;
        std::ranges::copy_if(transitions, std::back_inserter(found),
                             [&](const Transition& transition) { return isFoundBy(transition, search); });
        return found;
    };
    std::vector<Transition> found = foundIn(loaded.transitions());
    const std::vector<Transition> own = foundIn(fades());
    if (found.empty() && (own.empty() || options.json))
        found.push_back(loaded.find(search));  // by its index or GUID, or says what may be meant
    if (options.json) return listJson(found);
    const char* const line = "%5s  %-21s %-22s %-7s %-36s %s\n";
    if (!found.empty())
        std::printf(line, "INDEX", "NAME", "FUNCTION", "FAMILY", "GUID", "WHAT IT LOOKS LIKE");
    for (const Transition& transition : found)
        std::printf(line, transition.index ? std::to_string(*transition.index).c_str() : "-",
                    orDash(transition.name), orDash(transition.function), transition.family.c_str(),
                    orDash(transition.guid), transition.sentence.c_str());
    if (!own.empty())
        std::printf("%sFades, which are in no catalogue, and which random does not draw:\n",
                    found.empty() ? "" : "\n");
    for (const Transition& transition : own)
        std::printf("%5s  %-21s %s\n", "", transition.name.c_str(), transition.sentence.c_str());
}

}  // namespace

void addListCommand(CLI::App& app) {
    const auto options = std::make_shared<ListOptions>();
    CLI::App* const command =
        app.add_subcommand("list", "List the transitions, or those that words describe");
    command
        ->add_option("WORD", options->search,
                     "Only those that are called or described by it: circle, wipe, \"soft edge\"")
        ->type_name("");
    command->add_flag("--json", options->json, "As JSON");
    command->add_option("--plugin", options->plugin, "The plug-in to load (default: the installed one)")
        ->type_name("FILE");
    command->callback([options] { list(*options); });
}

}  // namespace vantle
