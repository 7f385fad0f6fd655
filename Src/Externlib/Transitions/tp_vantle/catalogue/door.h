/// The door that every exported function is: it reads and checks what a host gave, and has the effect draw.
#pragma once

#include <cstddef>
#include <new>

#include "blends/dissolve.h"
#include "catalogue/effects.h"
#include "frame/call.h"

namespace vantle {

/// What looks at the frames before they are drawn, and when: hosts may tell by their accessors.
struct FrameChecks {
    void (*beforeBitCount)(const Call& call) = nullptr;
    void (*afterBitCount)(const Call& call) = nullptr;
};

/// Reads the output's width, height and pitch, the pixels of all three frames and the output's bit count, in
/// this order, and draws if the frames allow it.
void draw(const Call& call, Effect& effect, const FrameChecks& checks = {}) noexcept;

/// The same with the bit count before the pixels, and between the two the order of the dissolve brought up to
/// date. Throws std::bad_alloc when that finds no memory.
void draw(const Call& call, Dissolve& dissolve);

/// The library's own object of an effect with a state. It is never destroyed: a host's threads may still draw
/// while the process ends.
template <typename State>
State& immortal() {
    alignas(State) static std::byte memory[sizeof(State)];
    static State& state = *new (memory) State;
    return state;
}

}  // namespace vantle
