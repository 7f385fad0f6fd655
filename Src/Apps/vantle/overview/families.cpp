#include "overview/families.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vantle {

namespace {

// A plug-in's records do not hold it.
constexpr auto families = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"TrRowVantle", "strips"},
    {"TrColVantle", "strips"},
    {"TrCrossVantle", "strips"},
    {"TrRowSplit", "strips"},
    {"TrColSplit", "strips"},
    {"TrRowMerge", "strips"},
    {"TrColMerge", "strips"},
    {"TrCrossSplit", "strips"},
    {"TrCrossMerge", "strips"},
    {"TrSkewLeftSplit", "strips"},
    {"TrSkewRightSplit", "strips"},
    {"TrSkewLeftMerge", "strips"},
    {"TrSkewRightMerge", "strips"},
    {"TrVerShutter", "strips"},
    {"TrHorShutter", "strips"},
    {"TrCrossShutter1", "strips"},
    {"TrCrossShutter2", "strips"},
    {"TrDepositUp", "strips"},
    {"TrRowSplit2", "strips"},
    {"TrColSplit2", "strips"},
    {"TrCrossSplit2", "strips"},
    {"TrBlind", "strips"},
    {"TrRectZoomIn", "shapes"},
    {"TrRectZoomOut", "shapes"},
    {"TrRoundZoomIn", "shapes"},
    {"TrRoundZoomIn2", "shapes"},
    {"TrRoundZoomOut", "shapes"},
    {"TrCirqueZoomIn", "shapes"},
    {"TrDiamondZoomIn", "shapes"},
    {"TrDiamondZoomOut", "shapes"},
    {"TrGridZoomIn", "shapes"},
    {"TrGridZoomOut", "shapes"},
    {"TrSweepClockwise", "shapes"},
    {"TrSweepAntiClockwise", "shapes"},
    {"TrWind", "shapes"},
    {"TrZoom", "shapes"},
    {"TrRollClockwise", "warps"},
    {"TrRollAntiClockwise", "warps"},
    {"TrRowCosVantle", "warps"},
    {"TrRowCosSlide", "warps"},
    {"TrTopple", "warps"},
    {"TrTwrl", "warps"},
    {"TrLinearWipeUpDown", "blends"},
    {"TrLinearWipeLeftRight", "blends"},
    {"TrFadeNew", "blends"},
});

}  // namespace

std::string_view familyOf(std::string_view function) {
    const auto* const row =
        std::ranges::find(families, function, &std::pair<std::string_view, std::string_view>::first);
    return row != families.end() ? row->second : "other";
}

}  // namespace vantle
