#include "help.h"

#include <CLI/Formatter.hpp>
#include <memory>
#include <string>

namespace vantle {

namespace {

class Help : public CLI::Formatter {
    std::string make_option_name(const CLI::Option* option, bool positional) const override {
        std::string name = CLI::Formatter::make_option_name(option, positional);
        if (const std::size_t comma = name.find(','); comma != std::string::npos) name.insert(comma + 1, " ");
        return name;
    }

    // A type is followed by what its validators say, after colons.
    std::string make_option_opts(const CLI::Option* option) const override {
        const std::string type = option->get_type_name();
        return option->get_type_size() == 0 ? "" : " " + type.substr(0, type.find(':'));
    }

    std::string make_option_desc(const CLI::Option* option) const override {
        std::string text = option->get_description();
        const std::string type = option->get_type_name();
        if (const std::size_t bounds = type.find('['); bounds != std::string::npos)
            text += " (" + type.substr(bounds + 1, type.find(']') - bounds - 1) + ")";
        if (!option->get_default_str().empty()) text += " (default: " + option->get_default_str() + ")";
        if (option->get_required() && !option->get_positional()) text += " (required)";
        return text;
    }
};

}  // namespace

void showLikeManual(CLI::App& app) {
    const auto help = std::make_shared<Help>();
    help->column_width(34);
    app.formatter(help);
    for (CLI::App* const command : app.get_subcommands({})) command->formatter(help);
}

}  // namespace vantle
