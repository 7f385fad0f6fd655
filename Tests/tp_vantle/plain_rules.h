/// Transitions put plainly, pixel by pixel: those that the library draws in quite another way.
#pragma once

#include <span>

#include "frames.h"

namespace tests {

struct PlainRule {
    const char* function;
    /// The output that is due for a scene at a position of a duration, both usable.
    Bytes (*draw)(const Scene& scene, double position, double duration);
    double moment = 0.5;             ///< a position of 0..1 where something begins or ends
    double lowest = 0, highest = 1;  ///< positions that the rule holds for
};

inline void PrintTo(const PlainRule& rule, std::ostream* out) { *out << rule.function; }

std::span<const PlainRule> plainRules();

}  // namespace tests
