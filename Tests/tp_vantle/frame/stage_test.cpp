// Effects drawn without a host, on frames in either order of rows.
#include "frame/stage.h"

#include "blends/dissolve.h"
#include "catalogue/effects.h"
#include "frames.h"

using namespace tests;

namespace {

template <typename State>
void drawFresh(const vantle::Stage& stage, const vantle::Progress& progress) {
    State state;
    const bool fromTop = (*stage.rows().begin()).y() == 0;
    state.fit(stage.width(), stage.height(), fromTop ? -1 : 1,
              [] { return [n = 1U]() mutable { return (n = n * 1664525 + 1013904223) >> 8; }; });
    state.draw(stage, progress);
}

constexpr std::pair<const char*, vantle::Effect*> effects[] = {
#define TRANSITION(function, effect, ...) {#function, vantle::effect},
#define STATEFUL(function, effect, ...) {#function, drawFresh<vantle::effect>},
#include "catalogue/transitions.inc"
};

}  // namespace

TEST(Stage, ShowsTheSamePictureWhicheverRowIsStoredFirst) {
    for (const Geometry& g : {Geometry{37, 23, 151}, {101, 40, 404}}) {
        const Bytes from = contentOf(g, 0), to = contentOf(g, 1), before = contentOf(g, 2);
        const Bytes turnedFrom = turnedOver(from, g.pitch), turnedTo = turnedOver(to, g.pitch);
        for (const auto& [function, draw] : effects)
            for (const double position : {0.1, 0.25, 0.505, 0.75, 0.9, 1.0}) {
                Bytes up = before, down = turnedOver(before, g.pitch);
                draw({g.width, g.height, g.pitch, up.data(), from.data(), to.data()}, {1.0, position});
                draw({g.width, g.height, -g.pitch, down.data(), turnedFrom.data(), turnedTo.data()},
                     {1.0, position});
                EXPECT_NE(up, before) << function;
                EXPECT_EQ(turnedOver(down, g.pitch), up) << function << " at " << position;
            }
    }
}
