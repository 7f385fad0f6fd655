#include "frame/contract.h"

float smoothStep(float e0, float e1, float x) {
    const float ramp = (x - e0) / (e1 - e0);
    if (ramp > 1.0F) return 1.0F;
    if (ramp < 0.0F) return 0.0F;
    return ramp;
}
