#include "frame/contract.h"
#include "frame/ramp.h"

float smoothStep(float e0, float e1, float x) { return vantle::clampedRamp(e0, e1, x); }
