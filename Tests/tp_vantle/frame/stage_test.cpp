// Effects drawn without a host, on frames in either order of rows.
#include "frame/stage.h"

#include <string_view>

#include "effects.h"
#include "frames.h"

using namespace tests;

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

// Wherever in a line of memory rows begin, with padding and without, in windows of which a row fills several,
// and in rows that are fetched in parts.
TEST(Stage, IsDrawnTheSamePastTheCache) {
    for (const Geometry& g :
         {Geometry{700, 40, 2812}, {1, 9, 4}, {301, 23, 1204}, {513, 17, 2064}, {2301, 5, 9204}}) {
        const Bytes from = contentOf(g, 0), to = contentOf(g, 1), before = contentOf(g, 2);
        std::uint32_t place = 0;
        for (const auto& [function, draw] : effects)
            for (const double position : {0.1, 0.25, 0.505, 0.75, 0.9, 1.0})
                for (const bool keeps : {true, false}) {
                    Bytes cached = before, room(before.size() + 128, 0xC3);
                    std::uint8_t* const lines = room.data() + vantle::bytesToLine(room.data());
                    std::uint8_t* const out = lines + (place += 7) % 64;
                    std::ranges::copy(before, out);
                    const Bytes around = room;
                    const auto stage = [&](std::uint8_t* pixels) {
                        const vantle::Stage all(g.width, g.height, g.pitch, pixels, from.data(), to.data());
                        return keeps ? all : all.keeping(vantle::Source::from);
                    };
                    draw(stage(cached.data()), {1.0, position});
                    forEachLevel([&, draw = draw, function = function] {
                        draw(stage(out).streamed(), {1.0, position});
                        EXPECT_TRUE(std::equal(cached.begin(), cached.end(), out))
                            << function << " at " << position;
                        std::ranges::copy(before, out);
                        EXPECT_EQ(room, around) << function << " writes outside its frame";
                    });
                }
    }
}

// As some hosts have it. What moves pixels cannot be.
TEST(Stage, MayBeDrawnOverAnInput) {
    const auto moves = [](std::string_view function) {
        return function == "TrRowCosSlide" || function == "TrTopple" || function == "TrTwrl" ||
               function == "TrZoom";
    };
    for (const Geometry& g : {Geometry{301, 23, 1204}, {700, 40, 2812}})
        for (const auto& [function, draw] : effects)
            for (const double position : {0.1, 0.505, 0.9})
                for (const bool overTo : {false, true}) {
                    if (moves(function)) continue;
                    const Bytes from = contentOf(g, 0), to = contentOf(g, 1);
                    const Bytes& input = overTo ? to : from;
                    Bytes beside = input, over = input;
                    const vantle::Stage stage(g.width, g.height, g.pitch, over.data(),
                                              overTo ? from.data() : over.data(),
                                              overTo ? over.data() : to.data());
                    draw({g.width, g.height, g.pitch, beside.data(), from.data(), to.data()},
                         {1.0, position});
                    forEachLevel([&, draw = draw, function = function] {
                        for (const vantle::Stage& drawn : {stage, stage.streamed()}) {
                            std::ranges::copy(input, over.begin());
                            draw(drawn, {1.0, position});
                            EXPECT_EQ(over, beside) << function << " at " << position;
                        }
                    });
                }
}

// After other pixels, reaching beyond the row, empty and turned round: as its three pieces are.
TEST(Stage, ShowsAWindowAsItsPieces) {
    using vantle::Fourth, vantle::Source;
    const Geometry g{700, 1, 2804};
    struct Window {
        std::int32_t start, first, end;
    };
    constexpr Window windows[] = {{0, 100, 300},  {0, 17, 690},   {40, 100, 600}, {40, 20, 400},
                                  {33, 300, 900}, {0, -50, 350},  {0, -9, 800},   {120, 350, 350},
                                  {0, 500, 300},  {700, 100, 300}};
    const Bytes from = contentOf(g, 0), to = contentOf(g, 1), before = contentOf(g, 2);
    for (const bool streamed : {false, true})
        for (const Source inside : {Source::from, Source::to})
            for (const Fourth fourth : {Fourth::mixed, Fourth::ofFrom})
                for (const Window& w : windows) {
                    const auto drawn = [&](auto draw) {
                        Bytes out = before;
                        const vantle::Stage stage(g.width, 1, g.pitch, out.data(), from.data(), to.data());
                        draw((streamed ? stage.streamed() : stage).row(0).skip(w.start));
                        return out;
                    };
                    const auto show = [&](vantle::Row& row, bool within, std::int32_t column) {
                        const Source source = within == (inside == Source::to) ? Source::to : Source::from;
                        if (fourth == Fourth::mixed || source == Source::from)
                            row.show(source, column);
                        else
                            row.toColours(column);
                    };
                    EXPECT_EQ(drawn([&](vantle::Row row) { row.window(inside, fourth, w.first, w.end); }),
                              drawn([&](vantle::Row row) {
                                  show(row, false, w.first);
                                  show(row, true, w.end);
                                  show(row, false, g.width);
                              }))
                        << w.start << ": " << w.first << " to " << w.end;
                }
}
