/// What the tests of all transitions must know of each one.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "Host/plugin.h"
#include "catalogue/transitions.h"

namespace tests {

/// For an end at which no one frame fills the picture.
inline constexpr const char* other = "";

struct Traits {
    const char* function;
    const char* first = "f";  ///< what every pixel is at position 0, in the letters of Scene::row
    const char* last = "t";   ///< and at the end
    /// Below 0 and past the end they draw the nearer end, or else what the formula gives there.
    bool formulaBefore = false, formulaBeyond = false;
};

inline void PrintTo(const Traits& traits, std::ostream* out) { *out << traits.function; }

/// Those that differ in anything from what most have in common.
inline constexpr Traits differing[] = {
    {"TrRowSplit", "f", "tf"},
    {"TrRowMerge", other},
    {"TrColMerge", other},
    {"TrCrossSplit", "f", other},
    {"TrCrossMerge", other, "tf"},
    {"TrSkewLeftSplit", "f", "d"},
    {"TrSkewRightSplit", "f", "df"},
    {"TrSkewLeftMerge", "f", "df"},
    {"TrSkewRightMerge", "f", "df"},
    {"TrRollClockwise", "f", "t", true, true},
    {"TrRollAntiClockwise", "f", "tf", true, true},
    {"TrVerShutter", "f", "tf"},
    {"TrHorShutter", "f", "tf"},
    {"TrDepositUp", "f", "tf"},
    {"TrRowCosVantle", "f", "tf"},
    {"TrRowSplit2", "fk", "tk"},
    {"TrBlind", "f", other},
    {"TrRectZoomIn", other, "df"},
    {"TrRectZoomOut", "f", other, false, true},
    {"TrRoundZoomIn", "f", other},
    {"TrRoundZoomOut", other},
    {"TrGridZoomIn", "f", "tf"},
    {"TrSweepClockwise", "f", "tf"},
    {"TrSweepAntiClockwise", "f", "tf"},
    {"TrZoom", "fk", "tk"},
    {"TrTwrl", other},
    {"TrLinearWipeUpDown", "f", other},
    {"TrRoundZoomIn2", "fk", "tk"},
    {"TrCirqueZoomIn", other},
    {"TrCrossSplit2", "fk", "tk"},
};

/// All transitions that there are: one that has nothing special about it needs no row here.
inline constexpr auto transitionTable = [] {
    std::array<Traits, std::size(vantle::transitionRows)> table{};
    std::ranges::transform(vantle::transitionRows, table.begin(), [](const vantle::TransitionRow& row) {
        for (const Traits& traits : differing)
            if (row.function == std::string_view(traits.function)) return traits;
        return Traits{.function = row.function};
    });
    return table;
}();

/// The built plug-in, loaded once and never unloaded: so long it keeps the order of its dissolve.
inline const vantle::Plugin& plugin() {
    static const auto* const loaded = new vantle::Plugin(PLUGIN_PATH);
    return *loaded;
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
