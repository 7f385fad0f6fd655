#include "list_command.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Host/plugin.h"

namespace vantle {

namespace {

const char* orDash(const std::string& text) { return text.empty() ? "-" : text.c_str(); }

nlohmann::ordered_json orNull(const std::string& text) {
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

void listJson(const Plugin& plugin) {
    auto rows = nlohmann::ordered_json::array();
    for (const Transition& transition : plugin.transitions()) {
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

/// Writes index, name, function, family, GUID and sentence of every transition to standard output.
void list(const std::filesystem::path& plugin, bool json) {
    const Plugin loaded(plugin);
    if (json) {
        listJson(loaded);
        return;
    }
    const char* const line = "%5s  %-21s %-22s %-7s %-36s %s\n";
    std::printf(line, "INDEX", "NAME", "FUNCTION", "FAMILY", "GUID", "WHAT IT LOOKS LIKE");
    for (const Transition& transition : loaded.transitions())
        std::printf(line, transition.index ? std::to_string(*transition.index).c_str() : "-",
                    orDash(transition.name), orDash(transition.function), transition.family.c_str(),
                    orDash(transition.guid), transition.sentence.c_str());
}

}  // namespace

void addListCommand(CLI::App& app) {
    struct Options {
        std::string plugin;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand("list", "List the transitions");
    command->add_flag("--json", options->json, "As JSON");
    command->add_option("--plugin", options->plugin, "The plug-in to load (default: the installed one)")
        ->type_name("FILE");
    command->callback([options] { list(options->plugin, options->json); });
}

}  // namespace vantle
