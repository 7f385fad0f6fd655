// One transition as a frei0r mixer: the door through which editors let frames in that know no other
// interface. What tells one module from another is its row.
#include <algorithm>
#include <cinttypes>
#include <new>
#include <random>

#include "frame/progress.h"
#include "frame/stage.h"
#include "row.h"

// The header says neither that its functions are C nor that they are to be found.
#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop

namespace vantle {

namespace {

struct Instance {
    Instance(std::int32_t frameWidth, std::int32_t frameHeight)
        : width(frameWidth), height(frameHeight), drawing(tableRow.drawing(width, height, pitch())) {}

    /// Below 0, because rows come from the top one on.
    std::int32_t pitch() const { return -4 * width; }

    std::int32_t width;
    std::int32_t height;
    double position = 0.0;  // as it was set
    std::unique_ptr<Drawing> drawing;
};

Instance* instanceOf(f0r_instance_t instance) { return static_cast<Instance*>(instance); }

}  // namespace

struct Random::State {
    std::mt19937 numbers;
};

Random::Random(std::uint32_t seed) : state_(std::make_unique<State>(State{std::mt19937(seed)})) {}

Random::~Random() = default;

std::uint32_t Random::operator()() { return static_cast<std::uint32_t>(state_->numbers()); }

}  // namespace vantle

using vantle::instanceOf;

extern "C" {

int f0r_init() { return 1; }

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    *info = {.name = vantle::tableRow.title,
             .author = "tp_vantle",
             .plugin_type = F0R_PLUGIN_TYPE_MIXER2,
             .color_model = F0R_COLOR_MODEL_RGBA8888,
             .frei0r_version = FREI0R_MAJOR_VERSION,
             .major_version = VANTLE_MAJOR_VERSION,
             .minor_version = VANTLE_MINOR_VERSION,
             .num_params = 1,
             .explanation = vantle::tableRow.sentence};
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
    shown.drawing->draw(stage.keeping(position < 1.0 ? vantle::Source::from : vantle::Source::to),
                        vantle::Progress(1.0, position));
}

/// Part of the interface for filters, which these are not.
void f0r_update(f0r_instance_t, double, const uint32_t*, uint32_t*) {}
}
