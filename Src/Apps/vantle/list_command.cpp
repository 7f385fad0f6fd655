#include "list_command.h"

#include <cstdio>
#include <nlohmann/json.hpp>

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
        rows.push_back(row);
    }
    std::puts(rows.dump(2).c_str());
}

}  // namespace

void list(const std::filesystem::path& plugin, bool json) {
    const Plugin loaded(plugin);
    if (json) {
        listJson(loaded);
        return;
    }
    std::printf("%5s  %-21s %-22s %-7s %s\n", "INDEX", "NAME", "FUNCTION", "FAMILY", "GUID");
    for (const Transition& transition : loaded.transitions())
        std::printf("%5s  %-21s %-22s %-7s %s\n",
                    transition.index ? std::to_string(*transition.index).c_str() : "-",
                    orDash(transition.name), orDash(transition.function), transition.family.c_str(),
                    orDash(transition.guid));
}

}  // namespace vantle
