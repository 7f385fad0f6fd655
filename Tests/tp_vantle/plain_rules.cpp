#include "plain_rules.h"

namespace tests {

std::span<const PlainRule> plainRules() {
    static const std::vector<PlainRule> rules = [] {
        std::vector<PlainRule> all;
        for (const auto part : {stripRules(), shapeRules(), warpRules(), blendRules()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return rules;
}

}  // namespace tests
