/// Every transition function of the library, family by family.
#pragma once

#include "frame/contract.h"

// strips/
TransFunc TrRowVantle, TrColVantle, TrCrossVantle;
TransFunc TrVerShutter, TrHorShutter, TrCrossShutter1, TrCrossShutter2, TrBlind;
TransFunc TrRowSplit, TrColSplit, TrRowMerge, TrColMerge, TrCrossSplit, TrCrossMerge;
TransFunc TrRowSplit2, TrColSplit2;
TransFunc TrSkewLeftSplit, TrSkewRightSplit, TrSkewLeftMerge, TrSkewRightMerge, TrDepositUp;
// shapes/
TransFunc TrRectZoomIn, TrRectZoomOut, TrRoundZoomIn, TrRoundZoomOut, TrDiamondZoomIn, TrDiamondZoomOut;
TransFunc TrGridZoomIn, TrGridZoomOut, TrSweepClockwise, TrSweepAntiClockwise, TrWind, TrZoom;
// warps/
TransFunc TrRollClockwise, TrRollAntiClockwise, TrTopple, TrTwrl, TrRowCosVantle, TrRowCosSlide;
// blends/
TransFunc TrFadeNew, TrLinearWipeUpDown, TrLinearWipeLeftRight;
// Exported by name, without a record in the catalogue.
TransFunc TrCrossSplit2, TrRoundZoomIn2, TrCirqueZoomIn;
