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

/// What an ordinary call leaves in the bytes of a row beyond its pixels.
enum class Padding {
    from,      ///< those of imgFrom
    kept,      ///< those that imgOut held
    shown,     ///< those of the frame that the row shows there
    untilEnd,  ///< kept, as byte 3 of a black background is, but imgTo's at the very end
    opened     ///< opened with the pixels, so that a padded row ends with some pixels still from imgFrom
};

/// What is drawn at positions outside 0 to the duration.
enum class Outside {
    ends,    ///< the nearer end
    onward,  ///< that only below 0; the formula goes on past the end
    formula  ///< what the formula gives
};

/// For an end at which no one frame fills the picture.
inline constexpr const char* other = "";

struct Traits {
    const char* function;
    Padding padding = Padding::from;
    const char* first = "f";  ///< what every pixel is at position 0, in the letters of Scene::row
    const char* last = "t";   ///< and at the end
    std::int32_t leastWidth = 1, leastHeight = 1;  ///< the smallest frame of which both are true
    Outside outside = Outside::ends;
    /// The end is there only where the eased position is exactly 1, as for a duration of 1, but not of 30.
    bool roundedEnd = false;
};

inline void PrintTo(const Traits& traits, std::ostream* out) { *out << traits.function; }

/// Those that differ in anything from what most have in common.
inline constexpr Traits differing[] = {
    {"TrRowVantle", Padding::opened},
    {"TrColVantle", Padding::kept},
    {"TrRowSplit", Padding::from, "f", "tf", 1, 2},
    {"TrColSplit", Padding::from, "f", "t", 2, 1},
    {"TrRowMerge", Padding::shown, other},
    {"TrColMerge", Padding::from, other},
    {"TrCrossSplit", Padding::shown, "f", other},
    {"TrCrossMerge", Padding::from, other, "tf"},
    {"TrSkewLeftSplit", Padding::from, "f", "d"},
    {"TrSkewRightSplit", Padding::from, "f", "df"},
    {"TrSkewLeftMerge", Padding::from, "f", "df"},
    {"TrSkewRightMerge", Padding::from, "f", "df"},
    {"TrRollClockwise", Padding::from, "f", "t", 1, 1, Outside::formula},
    {"TrRollAntiClockwise", Padding::from, "f", "tf", 1, 1, Outside::formula, true},
    {"TrVerShutter", Padding::from, "f", "tf"},
    {"TrHorShutter", Padding::from, "f", "tf"},
    {"TrDepositUp", Padding::from, "f", "tf"},
    {"TrRowCosVantle", Padding::from, "f", "tf", 1, 1, Outside::ends, true},
    {"TrRowCosSlide", Padding::shown, "f", "t", 1, 1, Outside::ends, true},
    {"TrRowSplit2", Padding::kept, "fk", "tk"},
    {"TrColSplit2", Padding::shown},
    {"TrTopple", Padding::kept, "f", "t", 1, 1, Outside::ends, true},
    {"TrBlind", Padding::kept, "f", other, 32, 1},
    {"TrRectZoomIn", Padding::from, other, "df"},
    {"TrRectZoomOut", Padding::from, "f", other, 1, 1, Outside::onward},
    {"TrRoundZoomIn", Padding::from, "f", other},
    {"TrRoundZoomOut", Padding::shown, other},
    {"TrDiamondZoomIn", Padding::shown},
    {"TrDiamondZoomOut", Padding::shown},
    {"TrGridZoomIn", Padding::from, "f", "tf"},
    {"TrGridZoomOut", Padding::shown},
    {"TrSweepClockwise", Padding::from, "f", "tf"},
    {"TrSweepAntiClockwise", Padding::from, "f", "tf"},
    {"TrZoom", Padding::kept, "fk", "tk"},
    {"TrTwrl", Padding::untilEnd, other},
    {"TrLinearWipeUpDown", Padding::from, "f", other},
    {"TrRoundZoomIn2", Padding::kept, "fk", "tk"},
    {"TrCirqueZoomIn", Padding::shown, other},
    {"TrCrossSplit2", Padding::kept, "fk", "tk"},
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
