// Compiled once for each row of the table, whose exported name is VANTLE_FUNCTION and title VANTLE_TITLE.
// What it includes is small for that reason.
#include "row.h"

#include "blends/dissolve.h"

namespace vantle {

namespace {

/// An effect that is a function keeps nothing.
template <Effect effect>
struct Stateless : Drawing {
    Stateless(std::int32_t, std::int32_t, std::int32_t) {}
    void draw(const Stage& stage, const Progress& progress) override { effect(stage, progress); }
};

/// The dissolve with an order that is settled by the frame's size alone, so that all who render frames of one
/// film agree on it, in whatever processes. It is made here: no frame waits for it or for memory.
template <typename Stateful>
struct Settled : Drawing {
    Settled(std::int32_t width, std::int32_t height, std::int32_t pitch) {
        const auto seed = (static_cast<std::uint32_t>(width) << 16) ^ static_cast<std::uint32_t>(height);
        effect.fit(width, height, pitch, [=] { return Random(seed); });
    }
    void draw(const Stage& stage, const Progress& progress) override { effect.draw(stage, progress); }

    Stateful effect;
};

// Named like the exported functions, for VANTLE_FUNCTION to name one of them.
#define TRANSITION(function, effect, ...) using function = Stateless<effect>;
#define STATEFUL(function, effect, ...) using function = Settled<effect>;
#include "catalogue/transitions.inc"

}  // namespace

namespace sentences {
#define TRANSITION(function, effect, family, name, guid, text) inline constexpr const char* function = text;
#include "catalogue/transitions.inc"
}  // namespace sentences

const TableRow tableRow = {
    "vantle: " VANTLE_TITLE, sentences::VANTLE_FUNCTION,
    [](std::int32_t width, std::int32_t height, std::int32_t pitch) -> std::unique_ptr<Drawing> {
        return std::make_unique<VANTLE_FUNCTION>(width, height, pitch);
    }};

}  // namespace vantle
