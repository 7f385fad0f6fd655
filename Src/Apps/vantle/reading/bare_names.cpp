#include "reading/bare_names.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "Host/error.h"
#include "Host/words.h"

namespace vantle {

namespace {

bool isName(const std::string& text, std::span<const Transition> catalogue) {
    const auto is = [&](std::string_view name) {
        return text.size() == name.size() && editsBetween(text, name) == 0;
    };
    return is("cut") || is("random") || std::ranges::any_of(catalogue, [&](const Transition& transition) {
               return is(shownName(transition)) || is(transition.function);
           });
}

bool isBare(const std::string& operand) {
    std::error_code ignored;  // a generated source may be too long for a name
    return !operand.starts_with('+') && !std::filesystem::exists(operand, ignored);
}

}  // namespace

void refuseBareNames(const std::vector<std::string>& operands, const std::vector<std::string>& transitions,
                     std::span<const Transition> catalogue) {
    const auto check = [&](const std::string& start, std::size_t next, const std::string& option) {
        std::string name = start;
        constexpr std::size_t most = 4;  // words of a name
        const std::size_t end = std::min(operands.size(), next + most);
        for (; next < end && isBare(operands[next]); ++next) {
            name += (name.empty() ? "" : " ") + operands[next];
            if (!isName(name, catalogue)) continue;
            if (name == operands[next])
                throw UsageError(name + ": no such file; between two inputs +" + name + " joins them");
            throw UsageError("a name of several words must be quoted: " + option + name + "\"");
        }
    };
    for (std::size_t i = 0; i < operands.size(); ++i) {
        if (operands[i].starts_with('+'))
            check(operands[i].substr(1), i + 1, "\"+");
        else
            check("", i, "\"+");
        for (const std::string& transition : transitions) check(transition, i, "-t \"");
    }
}

}  // namespace vantle
