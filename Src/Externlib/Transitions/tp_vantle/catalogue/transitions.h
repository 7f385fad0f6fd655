/// The transitions there are, for programs that list them: names alone, no code of theirs is linked.
#pragma once

namespace vantle {

/// One transition. `name` and `guid` are empty for those that have no record in the catalogue.
struct TransitionRow {
    const char* function;  ///< exported name, without its parameters
    const char* family;    ///< "strips", "shapes", "warps" or "blends"
    const char* name;      ///< display name
    const char* guid;
    const char* sentence;  ///< what it looks like
};

inline constexpr TransitionRow transitionRows[] = {
#define TRANSITION(function, effect, family, name, guid, sentence) {#function, #family, name, guid, sentence},
#include "catalogue/transitions.inc"
};

}  // namespace vantle
