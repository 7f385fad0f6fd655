// Effects drawn without a host, on frames in either order of rows.
#include "frame/stage.h"

#include <string_view>

#include "effects.h"
#include "frames.h"

using namespace tests;
using Streaming = vantle::Stage::Streaming;

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

// Wherever in a cache line rows begin, with padding and without, of one tile and of several.
TEST(Stage, IsDrawnTheSameWhenItIsStreamed) {
    for (const Geometry& g :
         {Geometry{700, 40, 2812}, {1, 9, 4}, {301, 23, 1204}, {513, 17, 2064}, {2301, 5, 9204}}) {
        const Bytes from = contentOf(g, 0), to = contentOf(g, 1), before = contentOf(g, 2);
        std::uint32_t place = 0;
        for (const auto& [function, draw] : effects)
            for (const double position : {0.1, 0.25, 0.505, 0.75, 0.9, 1.0})
                for (const bool keeps : {true, false}) {
                    Bytes cached = before, room(before.size() + 128, 0xC3);
                    std::uint8_t* const lines = room.data() + vantle::bytesToCacheLine(room.data());
                    std::uint8_t* const out = lines + (place += 7) % 64;
                    std::ranges::copy(before, out);
                    const Bytes around = room;
                    const auto stage = [&](std::uint8_t* pixels, Streaming streaming) {
                        const vantle::Stage all(g.width, g.height, g.pitch, pixels, from.data(), to.data(),
                                                streaming);
                        return keeps ? all : all.keeping(vantle::Source::from);
                    };
                    draw(stage(cached.data(), Streaming::ofLargeFrames), {1.0, position});
                    forEachLevel([&, draw = draw, function = function] {
                        draw(stage(out, Streaming::always), {1.0, position});
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
                    draw({g.width, g.height, g.pitch, beside.data(), from.data(), to.data()},
                         {1.0, position});
                    forEachLevel([&, draw = draw, function = function] {
                        for (const Streaming streaming : {Streaming::ofLargeFrames, Streaming::always}) {
                            std::ranges::copy(input, over.begin());
                            draw({g.width, g.height, g.pitch, over.data(), overTo ? from.data() : over.data(),
                                  overTo ? over.data() : to.data(), streaming},
                                 {1.0, position});
                            EXPECT_EQ(over, beside) << function << " at " << position;
                        }
                    });
                }
}
