/// From what is asked for to a film, every frame of it in its place.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Host/plugin.h"
#include "timeline/film.h"
#include "timeline/input.h"
#include "timeline/sequence.h"

namespace vantle {

/// The transition of each meeting, null for a cut. One that is given as `random` is drawn from the catalogue,
/// never the same as a neighbour, and follows from `seed` alone. Throws UsageError for an unknown name.
std::vector<const Transition*> transitionsFor(const Sequence& sequence, const Plugin& plugin,
                                              std::uint32_t seed);

/// What holds for all shots and meetings that do not say otherwise.
struct Defaults {
    Time duration{1.0, false};
    Time hold{1.0, false};
    bool shrink = false;     ///< overlaps that are too long for their inputs are shortened
    bool drawsEnds = false;  ///< see Film
};

/// Opens all inputs at once, as many at a time as there are cores, and measures them. Only the first two stay
/// open. Throws Error for the first one that cannot be read.
std::vector<std::unique_ptr<Input>> openInputs(const Sequence& sequence, bool quiet);

/// Lays the film out. `notes` gets a line for whatever its user should know before. Throws Error, which names
/// the input, when one shows less than its overlaps need.
Film layOut(const Sequence& sequence, std::span<const std::unique_ptr<Input>> inputs,
            const std::vector<const Transition*>& transitions, const Canvas& canvas, const Defaults& defaults,
            std::vector<std::string>& notes);

}  // namespace vantle
