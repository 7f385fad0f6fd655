/// Fades, the joins that a host draws itself: the plainest there are, beside those of a plug-in.
#pragma once

#include <span>

#include "Host/plugin.h"

namespace vantle {

/// From one picture straight to the other, or by way of black or white: `fade`, `fade-black`, `fade-white`.
std::span<const Transition> fades();

/// Draws `picture` as bright as `light` says, 0 (black) to 1.
void drawDimmed(DIImage out, DIImage picture, double light);

}  // namespace vantle
