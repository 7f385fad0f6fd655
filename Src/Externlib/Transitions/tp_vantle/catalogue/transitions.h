/// Every transition function of the library, family by family.
#pragma once

#include "frame/contract.h"

// strips/vantle.cpp
TransFunc TrRowVantle, TrColVantle, TrCrossVantle;
// strips/shutters.cpp
TransFunc TrVerShutter, TrHorShutter, TrCrossShutter1, TrCrossShutter2;
// strips/blind.cpp
TransFunc TrBlind;
// strips/splits.cpp
TransFunc TrRowSplit, TrColSplit, TrRowMerge, TrColMerge, TrCrossSplit, TrCrossMerge;
// strips/second_splits.cpp
TransFunc TrRowSplit2, TrColSplit2;
// strips/skews.cpp
TransFunc TrSkewLeftSplit, TrSkewRightSplit, TrSkewLeftMerge, TrSkewRightMerge;
// strips/deposit.cpp
TransFunc TrDepositUp;
// shapes/rect_zoom.cpp, diamond_zoom.cpp, grid_zoom.cpp, pinwheel.cpp, zoom.cpp
TransFunc TrRectZoomIn, TrRectZoomOut, TrDiamondZoomIn, TrDiamondZoomOut, TrGridZoomIn, TrGridZoomOut;
TransFunc TrWind, TrZoom, TrRoundZoomIn, TrRoundZoomOut;
TransFunc TrSweepClockwise, TrSweepAntiClockwise;
// Exported by name, without a record in the catalogue: second_splits.cpp, round_zoom.cpp,
// cirque_zoom.cpp.
TransFunc TrCrossSplit2, TrRoundZoomIn2, TrCirqueZoomIn;
