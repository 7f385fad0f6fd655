/// Linear ramps in single precision.
#pragma once

namespace vantle {

/// From 0 at `e0` to 1 at `e1`, clamped to 0..1; NaN where the ramp is undefined (e0 = e1 = x).
constexpr float clampedRamp(float e0, float e1, float x) {
    const float ramp = (x - e0) / (e1 - e0);
    if (ramp > 1.0F) return 1.0F;
    if (ramp < 0.0F) return 0.0F;
    return ramp;
}

}  // namespace vantle
