/// The effects by the names of their functions, to be drawn without a door, on any processor level.
#pragma once

#include <utility>

#include "blends/dissolve.h"
#include "catalogue/effects.h"
#include "frame/pixels/processor.h"
#include "frame/progress.h"
#include "frame/stage.h"

namespace tests {

/// A dissolve in an order of its own, the same every time.
template <typename State>
void drawFresh(const vantle::Stage& stage, const vantle::Progress& progress) {
    State state;
    const bool fromTop = (*stage.rows(vantle::Writes::pixels).begin()).y() == 0;
    state.fit(stage.width(), stage.height(), fromTop ? -1 : 1,
              [] { return [n = 1U]() mutable { return (n = n * 1664525 + 1013904223) >> 8; }; });
    state.draw(stage, progress);
}

inline constexpr std::pair<const char*, vantle::Effect*> effects[] = {
#define TRANSITION(function, effect, ...) {#function, vantle::effect},
#define STATEFUL(function, effect, ...) {#function, drawFresh<vantle::effect>},
#include "catalogue/transitions.inc"
};

/// Does some work as on each processor level, where a build lets a test choose, and else on the machine's
/// own.
template <typename Work>
void forEachLevel(const Work& work) {
#if VANTLE_SANITIZED
    for (const auto level : {vantle::Level::base, vantle::Level::avx2, vantle::Level::avx512}) {
        vantle::testedLevel = level;
        work();
    }
    vantle::testedLevel = vantle::Level::base;
#else
    work();
#endif
}

}  // namespace tests
