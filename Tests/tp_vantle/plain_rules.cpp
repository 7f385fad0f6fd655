#include "plain_rules.h"

namespace tests {

const PlainRule* plainRuleOf(std::string_view function) {
    for (const auto part : {stripRules(), shapeRules(), warpRules(), blendRules()})
        for (const PlainRule& rule : part)
            if (rule.function == function) return &rule;
    return nullptr;
}

}  // namespace tests
