/// What the tests of all transitions must know of each one.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "Host/plugin.h"

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
    const char* name;  ///< in the catalogue; empty for those exported without a record
    Padding padding = Padding::from;
    const char* first = "f";  ///< what every pixel is at position 0, in the letters of Scene::row
    const char* last = "t";   ///< and at the end
    std::int32_t leastWidth = 1, leastHeight = 1;  ///< the smallest frame of which both are true
    Outside outside = Outside::ends;
    /// The end is there only where the eased position is exactly 1, as for a duration of 1, but not of 30.
    bool roundedEnd = false;
};

inline void PrintTo(const Traits& traits, std::ostream* out) { *out << traits.function; }

inline constexpr Traits transitionTable[] = {
    {"TrRowVantle", "Row_vantle", Padding::opened},
    {"TrColVantle", "Col_vantle", Padding::kept},
    {"TrCrossVantle", "Cross_vantle"},
    {"TrRowSplit", "Row_split", Padding::from, "f", "tf", 1, 2},
    {"TrColSplit", "Col_split", Padding::from, "f", "t", 2, 1},
    {"TrRowMerge", "Row_merge", Padding::shown, other},
    {"TrColMerge", "Col_merge", Padding::from, other},
    {"TrCrossSplit", "Cross_split", Padding::shown, "f", other},
    {"TrCrossMerge", "Cross_merge", Padding::from, other, "tf"},
    {"TrSkewLeftSplit", "Skew_right_split", Padding::from, "f", "d"},
    {"TrSkewRightSplit", "Skew_left_split", Padding::from, "f", "df"},
    {"TrSkewLeftMerge", "Skew_left_merge", Padding::from, "f", "df"},
    {"TrSkewRightMerge", "Skew_right_merge", Padding::from, "f", "df"},
    {"TrRollClockwise", "Roll_clockwise", Padding::from, "f", "t", 1, 1, Outside::formula},
    {"TrRollAntiClockwise", "Roll_anti_clockwise", Padding::from, "f", "tf", 1, 1, Outside::formula, true},
    {"TrVerShutter", "Vertical_shutter", Padding::from, "f", "tf"},
    {"TrHorShutter", "Horizontal_shutter", Padding::from, "f", "tf"},
    {"TrCrossShutter1", "Cross_shutter_1"},
    {"TrCrossShutter2", "Cross_shutter_2"},
    {"TrDepositUp", "Deposit_up", Padding::from, "f", "tf"},
    {"TrRowCosVantle", "Row_cos_vantle", Padding::from, "f", "tf", 1, 1, Outside::ends, true},
    {"TrRowCosSlide", "Row_cos_slide", Padding::shown, "f", "t", 1, 1, Outside::ends, true},
    {"TrRowSplit2", "Row_split_2", Padding::kept, "fk", "tk"},
    {"TrColSplit2", "Col_split_2", Padding::shown},
    {"TrTopple", "Topple", Padding::kept, "f", "t", 1, 1, Outside::ends, true},
    {"TrBlind", "Blind_1", Padding::kept, "f", other, 32, 1},
    {"TrRectZoomIn", "Rect_zoom_in", Padding::from, other, "df"},
    {"TrRectZoomOut", "Rect_zoom_out", Padding::from, "f", other, 1, 1, Outside::onward},
    {"TrRoundZoomIn", "Round_zoom_out", Padding::from, "f", other},
    {"TrRoundZoomOut", "Round_zoom_in", Padding::shown, other},
    {"TrDiamondZoomIn", "Diamond_zoom_in", Padding::shown},
    {"TrDiamondZoomOut", "Diamond_zoom_out", Padding::shown},
    {"TrGridZoomIn", "Grid_zoom_in", Padding::from, "f", "tf"},
    {"TrGridZoomOut", "Grid_zoom_out", Padding::shown},
    {"TrSweepClockwise", "sweep_clockwise", Padding::from, "f", "tf"},
    {"TrSweepAntiClockwise", "sweep_anti_clockwise", Padding::from, "f", "tf"},
    {"TrWind", "Pinwheel"},
    {"TrZoom", "Zoom", Padding::kept, "fk", "tk"},
    {"TrTwrl", "Twrl", Padding::untilEnd, other},
    {"TrLinearWipeUpDown", "Linear Wipe Down", Padding::from, "f", other},
    {"TrLinearWipeLeftRight", "Linear Wipe Right"},
    {"TrFadeNew", "Dissolve 2"},
    {"TrRoundZoomIn2", "", Padding::kept, "fk", "tk"},
    {"TrCirqueZoomIn", "", Padding::shown, other},
    {"TrCrossSplit2", "", Padding::kept, "fk", "tk"},
};

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
