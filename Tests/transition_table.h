/// What the tests of all transitions must know of each one.
#pragma once

#include <ostream>
#include <string>

#include "plugin.h"

namespace tests {

/// What an ordinary call leaves in the bytes of a row beyond its pixels.
enum class Padding {
    from,   ///< those of imgFrom
    kept,   ///< those that imgOut held
    opened  ///< opened with the pixels, so that a padded row ends with some pixels still from imgFrom
};

struct Traits {
    const char* function;
    const char* name;  ///< in the catalogue; empty for those exported without a record
    Padding padding = Padding::from;
    char first = 'f';  ///< the frame that every pixel shows at position 0: f imgFrom, t imgTo
    char last = 't';   ///< and at the end
};

inline void PrintTo(const Traits& traits, std::ostream* out) { *out << traits.function; }

inline constexpr Traits transitionTable[] = {
    {"TrRowVantle", "Row_vantle", Padding::opened},
    {"TrColVantle", "Col_vantle", Padding::kept},
    {"TrCrossVantle", "Cross_vantle"},
};

/// The built plug-in, loaded once.
inline const vantle::Plugin& plugin() {
    static const vantle::Plugin loaded(PLUGIN_PATH);
    return loaded;
}

template <typename Function>
Function* exported(const std::string& symbol) {
    return reinterpret_cast<Function*>(plugin().symbol(symbol));
}

/// The name under which a transition function is exported.
inline std::string symbolOf(const std::string& function) {
    return "_Z" + std::to_string(function.size()) + function + "PvS_S_PK10TransParam";
}

inline TransFunc* transition(const std::string& function) { return exported<TransFunc>(symbolOf(function)); }

}  // namespace tests
