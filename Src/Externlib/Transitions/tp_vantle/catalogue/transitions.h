/// Every transition function of the library, family by family.
#pragma once

#include "frame/contract.h"

// strips/vantle.cpp
TransFunc TrRowVantle, TrColVantle, TrCrossVantle;
