// One transition as a frei0r mixer: the door through which editors let frames in that know no other
// interface. Compiled once for each row of the table, whose exported name is VANTLE_FUNCTION and title
// VANTLE_TITLE.
#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <new>
#include <random>
#include <string_view>

#include "blends/dissolve.h"
#include "catalogue/effects.h"
#include "catalogue/transitions.h"

// The header says neither that its functions are C nor that they are to be found.
#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop

namespace vantle {

namespace {

/// What an instance owns of an effect that is a function: nothing.
template <Effect effect>
struct Stateless {
    Stateless(std::int32_t, std::int32_t, std::int32_t) {}
    void draw(const Stage& stage, const Progress& progress) const { effect(stage, progress); }
};

/// The dissolve with an order that is settled by the frame's size alone, so that all who render frames of one
/// film agree on it, in whatever processes. It is made here: no frame waits for it or for memory.
template <typename Stateful>
struct Settled : Stateful {
    Settled(std::int32_t width, std::int32_t height, std::int32_t pitch) {
        const auto seed = (static_cast<std::uint32_t>(width) << 16) ^ static_cast<std::uint32_t>(height);
        this->fit(width, height, pitch, [=] { return std::mt19937(seed); });
    }
};

// Named like the exported functions, for VANTLE_FUNCTION to name one of them.
#define TRANSITION(function, effect, ...) using function = Stateless<effect>;
#define STATEFUL(function, effect, ...) using function = Settled<effect>;
#include "catalogue/transitions.inc"

#define NAME_OF(function) #function
#define NAME(function) NAME_OF(function)

/// What the transition looks like.
constexpr const char* sentence =
    std::ranges::find(transitionRows, std::string_view(NAME(VANTLE_FUNCTION)), [](const TransitionRow& row) {
        return std::string_view(row.function);
    })->sentence;

struct Instance {
    Instance(std::int32_t frameWidth, std::int32_t frameHeight)
        : width(frameWidth), height(frameHeight), effect(width, height, pitch()) {}

    /// Below 0, because rows come from the top one on.
    std::int32_t pitch() const { return -4 * width; }

    std::int32_t width;
    std::int32_t height;
    double position = 0.0;  // as it was set
    VANTLE_FUNCTION effect;
};

Instance* instanceOf(f0r_instance_t instance) { return static_cast<Instance*>(instance); }

}  // namespace

}  // namespace vantle

using vantle::instanceOf;

extern "C" {

int f0r_init() { return 1; }

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    *info = {.name = "vantle: " VANTLE_TITLE,
             .author = "tp_vantle",
             .plugin_type = F0R_PLUGIN_TYPE_MIXER2,
             .color_model = F0R_COLOR_MODEL_RGBA8888,
             .frei0r_version = FREI0R_MAJOR_VERSION,
             .major_version = VANTLE_MAJOR_VERSION,
             .minor_version = VANTLE_MINOR_VERSION,
             .num_params = 1,
             .explanation = vantle::sentence};
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
    if (index == 0)
        *info = {.name = "position",
                 .type = F0R_PARAM_DOUBLE,
                 .explanation = "How far the transition is: 0 at its start, 1 at its end"};
}

f0r_instance_t f0r_construct(unsigned width, unsigned height) {
    // No frame has 2^31 bytes or more, nor none.
    const std::uint64_t pixels = std::uint64_t{width} * height;
    if (pixels == 0 || pixels >= std::uint64_t{1} << 29) return nullptr;
    try {
        return new vantle::Instance(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// Hosts that do not look at what f0r_construct gave pass it on: without an instance nothing happens.

void f0r_destruct(f0r_instance_t instance) { delete instanceOf(instance); }

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
    if (instance != nullptr && index == 0) instanceOf(instance)->position = *static_cast<double*>(param);
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
    if (instance != nullptr && index == 0) *static_cast<double*>(param) = instanceOf(instance)->position;
}

void f0r_update2(f0r_instance_t instance, double, const uint32_t* inframe1, const uint32_t* inframe2,
                 const uint32_t*, uint32_t* outframe) {
    if (instance == nullptr) return;
    vantle::Instance& shown = *instanceOf(instance);
    // What is not a number is not above 0.
    const double position = shown.position > 0.0 ? std::min(shown.position, 1.0) : 0.0;
    const vantle::Stage stage(
        shown.width, shown.height, shown.pitch(), reinterpret_cast<std::uint8_t*>(outframe),
        reinterpret_cast<const std::uint8_t*>(inframe1), reinterpret_cast<const std::uint8_t*>(inframe2));
    shown.effect.draw(stage.keeping(position < 1.0 ? vantle::Source::from : vantle::Source::to),
                      vantle::Progress(1.0, position));
}

/// Part of the interface for filters, which these are not.
void f0r_update(f0r_instance_t, double, const uint32_t*, uint32_t*) {}
}
