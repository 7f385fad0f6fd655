/// Transitions put plainly, pixel by pixel, in the exact order of their operations.
#pragma once

#include <span>

#include "frames.h"

namespace tests {

struct PlainRule {
    const char* function;
    /// The output that is due for a scene at a position of a duration, both usable.
    Bytes (*draw)(const Scene& scene, double position, double duration);
    double moments[4] = {};          ///< positions of 0..1 where something begins or ends
    double lowest = 0, highest = 1;  ///< positions that the rule holds for
};

std::span<const PlainRule> stripRules();
std::span<const PlainRule> shapeRules();
std::span<const PlainRule> warpRules();
std::span<const PlainRule> blendRules();

/// The rule among all of these for a transition, or null.
const PlainRule* plainRuleOf(std::string_view function);

}  // namespace tests
