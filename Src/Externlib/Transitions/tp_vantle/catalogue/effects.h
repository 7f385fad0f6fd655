/// The effects by name, for whoever draws with them directly: a row's function, or class, without its door.
#pragma once

namespace vantle {

class Progress;
class Stage;

/// Draws one frame. Knows nothing of hosts, keeps nothing, and may run at once on different frames.
using Effect = void(const Stage& stage, const Progress& progress);

#define TRANSITION(function, effect, ...) Effect effect;
#define STATEFUL(function, effect, ...) class effect;
#include "catalogue/transitions.inc"

}  // namespace vantle
