// A film as a description: what operands say, times on grids, inputs laid out. No file is opened here.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Host/error.h"
#include "reading/bare_names.h"
#include "reading/operands.h"
#include "timeline/chapters.h"
#include "timeline/film_shape.h"
#include "timeline/lay_out.h"
#include "timeline/motion.h"
#include "timeline/pace.h"

namespace tests {

namespace {

using namespace vantle;

/// Of thirty pictures a second in units of a millisecond, as some containers have them.
Source clip(const std::string& name, std::int64_t milliseconds, int channels = 0) {
    Source source{.name = name,
                  .size = {640, 360},
                  .rate = {30, 1},
                  .timeBase = {1, 1000},
                  .firstTime = 21,
                  .length = milliseconds};
    if (channels > 0) source.audio = {1, 48000, channels};
    return source;
}

Source still(const std::string& name) {
    return {.name = name, .still = true, .endless = true, .size = {4001, 3001}, .rate = {0, 1}};
}

const std::vector<Transition> catalogue = [] {
    std::vector<Transition> rows;
    const auto draw = [](DIImage, DIImage, DIImage, const TransParam*) {};
    for (const std::string name : {"Row", "Column", "Round", "Two words"})
        rows.push_back({static_cast<std::int32_t>(rows.size()), name, "Tr" + name, "", "", "", draw});
    return rows;
}();

FilmRequest film(const std::vector<std::string>& operands, const std::vector<std::string>& transitions = {}) {
    FilmRequest request;
    parseOperands(request, operands, transitions);
    return request;
}

LaidOut laidOut(const FilmRequest& request, const std::vector<Source>& sources) {
    std::vector<Complaint> complaints;
    auto transitions = chooseTransitions(request, catalogue, complaints);
    LaidOut laid = layOut(request, sources, std::move(transitions));
    laid.complaints.insert(laid.complaints.begin(), complaints.begin(), complaints.end());
    return laid;
}

/// Parts as "0-99@5" (frames of the film, first picture of the source), joins as "Row 90+10".
std::string text(const LaidOut& laid) {
    std::string all;
    for (const Complaint& complaint : laid.complaints) all += complaint.text + "; ";
    if (!laid.complaints.empty()) return all;
    const Film& film = laid.film;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Part& part = film.parts[i];
        all += std::to_string(part.start) + "-" + std::to_string(part.end() - 1) + "@" +
               std::to_string(part.first) + " ";
        if (i == film.joins.size()) break;
        const Join& join = film.joins[i];
        all += (join.transition ? join.transition->shown : "cut") + " " + std::to_string(join.start) + "+" +
               std::to_string(join.frames) + " ";
    }
    return all;
}

}  // namespace

TEST(Pace, IsThatOfMostPicturesAndAStandardWhereOneIsNear) {
    const auto pace = [](AVRational unit, const std::vector<std::int64_t>& steps, int repeats = 12) {
        std::vector<std::int64_t> times{1000};
        for (int i = 0; i < repeats; ++i)
            for (const std::int64_t step : steps) times.insert(times.begin(), times.front() + step);
        const AVRational rate = paceOf(times, unit);
        return std::to_string(rate.num) + "/" + std::to_string(rate.den);
    };
    EXPECT_EQ(pace({1, 1000}, {33, 34, 33}), "30/1");
    EXPECT_EQ(pace({1, 1000}, {33, 34, 33, 33, 34}, 3), "30000/1001");  // which it may be as well
    EXPECT_EQ(pace({1, 1000}, {42, 41, 42, 42}), "24000/1001");
    EXPECT_EQ(pace({1, 600}, {20}), "30/1");
    // A telephone in the dark, with pictures missing, late and doubled.
    EXPECT_EQ(pace({1, 90000}, {3000, 3001, 2990, 3750, 2999, 6003, 3008, 0, 3000, 9700}), "30/1");
    EXPECT_EQ(pace({1, 90000}, {1449, 1548, 1500}), "60/1");
    EXPECT_EQ(pace({1, 1000}, {83, 83, 84}), "12/1");
    EXPECT_EQ(pace({1, 1000}, {500}), "2/1");
    EXPECT_EQ(pace({1, 1000}, {}), "0/1");
}

TEST(Times, AreReadExactlyAndRoundedOnce) {
    const AVRational ntsc{30000, 1001};
    struct Case {
        const char* words;
        AVRational rate;
        std::int64_t frames;
    };
    for (const auto& [words, rate, frames] : {
             Case{"2.5", {25, 1}, 63},  // a half goes up
             {"2.3", {25, 1}, 58},      // 57.5, whatever binary fractions make of it
             {"1:02.5", {24, 1}, 1500},
             {"1:00:00", ntsc, 107892},
             {"500ms", {30, 1}, 15},
             {"33.366700000001ms", ntsc, 1},
             {"10s", ntsc, 300},
             {"12f", ntsc, 12},
             {"12.0f", {25, 1}, 12},
             {"9999999", {1000, 1}, 9999999000},
         }) {
        const std::optional<Time> time = parseTime(words);
        ASSERT_TRUE(time) << words;
        EXPECT_EQ(time->frames(rate), frames) << words;
    }
    for (const std::string words : {"", "x", "1:2:3:4", "1:2f", "1:2ms", "-1", "1e3", "1.5f", "10000000",
                                    ".5", "1:", "2.x", " 2", "2 ", "nan", "1.5:20"})
        EXPECT_FALSE(parseTime(words)) << words;
}

TEST(Operands, SayWhatIsShownAndHowItMeets) {
    const FilmRequest request = film({"a.mp4", "in=1", "out=4f", "+Row", "duration=5f", "b=c.png", "hold=2",
                                      "fit=cover", "turn=90", "flip=h", "c.mp4", "mute=yes"},
                                     {"random", "cut"});
    ASSERT_EQ(request.shots.size(), 3U);
    EXPECT_EQ(request.shots[0].in, parseTime("1"));
    EXPECT_EQ(request.shots[0].out, parseTime("4f"));
    EXPECT_EQ(request.meetings[0].duration, parseTime("5f"));
    EXPECT_EQ(request.shots[1].file, "b=c.png");
    EXPECT_EQ(request.shots[1].fit, Fit::cover);
    EXPECT_EQ(request.shots[1].turn, (Orientation{1, true}));
    EXPECT_EQ(request.meetings[1].transition, "cut");  // the second in turn
    EXPECT_TRUE(request.shots[2].mute);
    for (const auto& [operands, says] : {
             std::pair<std::vector<std::string>, const char*>{{"a"}, "two inputs"},
             {{"+Row", "a", "b"}, "(a file of this name is ./+Row)"},
             {{"a", "+Row", "+Row", "b"}, "+Row must stand between"},
             {{"a", "b", "+Row"}, "+Row must stand between"},
             {{"in=1", "a", "b"}, "before all inputs"},
             {{"a", "duration=2", "b"}, "belongs after a transition"},
             {{"a", "+Row", "in=2", "b"}, "belongs after an input"},
             {{"a", "in=1:2:3:4", "b"}, "is no time"},
             {{"a", "fit=tight", "b"}, "none of contain, cover, stretch"},
             {{"a", "turn=45", "b"}, "degrees clockwise"},
             {{"a", "flip=x", "b"}, "left and right"},
             {{"a", "mute=maybe", "b"}, "not yes or no"},
             {{"a", "start=2", "b"}, "start=2: neither a file nor a setting; an input has in, "},
         })
        try {
            film(operands);
            ADD_FAILURE() << says;
        } catch (const UsageError& error) {
            EXPECT_NE(std::string(error.what()).find(says), std::string::npos) << error.what();
        }
}

TEST(FilmDescription, HasMotionThatStaysWithinItsStills) {
    FilmRequest request = film({"a", "b.mp4", "c", "d", "motion=no"}, {"Row"});
    request.motion = true;
    const std::vector<Source> sources{still("a"), clip("b.mp4", 5000), still("c"), still("d")};
    std::optional<Motion> before;
    for (const std::uint32_t seed : {1U, 2U, 3U, 4U, 5U, 6U}) {
        request.seed = seed;
        const std::vector<Part> parts = laidOut(request, sources).film.parts;
        EXPECT_FALSE(parts[1].motion || parts[3].motion);
        for (const std::size_t i : {0U, 2U}) {
            ASSERT_TRUE(parts[i].motion);
            for (const double position : {-0.1, 0.0, 0.3, 1.0, 1.1}) {
                const View view = parts[i].motion->at(position);
                EXPECT_GE(std::min(view.left, view.top), 0.0);
                EXPECT_LE(std::max(view.left, view.top) + view.size, 1.0 + 1e-9);
            }
            EXPECT_NE(parts[i].motion, before);
            before = parts[i].motion;
        }
        EXPECT_EQ(laidOut(request, sources).film.parts[2].motion, before);
    }
    request = film({"a", "b.mp4", "motion=yes"}, {"Row"});
    EXPECT_NE(text(laidOut(request, {still("a"), clip("b.mp4", 5000)})).find("motion is for stills"),
              std::string::npos);
}

TEST(Operands, LoseNothingInSilence) {
    using Lines = std::vector<std::string>;
    FilmRequest request;
    EXPECT_EQ(parseOperands(request, {"a", "b", "+Row", "c"}, {"CUT", "Row", "Column"}),
              (Lines{"-t Row is not used: no join is left for it",
                     "-t Column is not used: no join is left for it"}));
    EXPECT_EQ(request.meetings[0].transition, "cut");
    const auto refused = [](const Lines& operands, const Lines& transitions) -> std::string {
        try {
            refuseBareNames(operands, transitions, catalogue);
        } catch (const UsageError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(refused({"a", "row", "b"}, {}), "row: no such file; between two inputs +row joins them");
    EXPECT_EQ(refused({"a", "+Two", "words", "b"}, {}),
              "a name of several words must be quoted: \"+Two words\"");
    EXPECT_EQ(refused({"a", "b", "Words"}, {"two"}),
              "a name of several words must be quoted: -t \"two Words\"");
    EXPECT_EQ(refused({"a", "+Row", "+Column", "/"}, {"Row", "Two"}), "");
}

TEST(FilmDescription, AreLaidOutFrameByFrame) {
    const std::vector<Source> clips{clip("a", 4000), clip("b", 3033, 1), clip("c", 2000, 2)};
    const std::vector<std::string> names{"a", "b", "c"};
    struct Case {
        std::vector<std::string> operands;
        const char* laid;
    };
    for (const auto& [operands, laid] : {
             Case{{"a", "b", "c"}, "0-119@0 Row 90+30 90-180@0 Row 151+30 151-210@0 "},
             {{"a", "in=10f", "out=70f", "+cut", "b", "c"},
              "0-59@10 cut 60+0 60-150@0 Row 121+30 121-180@0 "},
             {{"a", "+Column", "duration=12f", "b", "out=92f", "c"},
              "0-119@0 Column 108+12 108-198@0 Row 169+30 169-228@0 "},
             {{"a", "out=122f", "b", "in=9", "c"},
              "a: out lies after its end, 4.00 s (120 frames); b: in lies after its end, 3.03 s (91 "
              "frames); "},
             {{"a", "in=2", "out=1", "+Rwo", "b", "c", "out=40f"},
              "no transition is called \"Rwo\"; did you mean \"Row\"? (vantle list shows them all); a: out "
              "does not lie after in; "},
             {{"a", "+0", "duration=10ms", "b", "c", "out=29f"},
              "duration: shorter than one frame; c: shows 29 frames (0.97 s), fewer than the 30 (1.00 s) "
              "that its transitions need; a shorter --duration helps, or --shrink; "},
         })
        EXPECT_EQ(text(laidOut(film(operands, {"Row"}), clips)), laid);

    FilmRequest fading = film({"a", "b", "c"}, {"Row"});
    fading.fadeIn = *parseTime("5");
    fading.fadeOut = *parseTime("2100ms");
    EXPECT_EQ(text(laidOut(fading, clips)),
              "--fade-in and --fade-out take 213 frames (7.10 s) together, and the film has 211 frames (7.03 "
              "s); ");
    EXPECT_EQ(
        text(laidOut(film({"a", "hold=1", "x", "in=1", "y", "hold=1", "out=2"}, {"Row"}),
                     {clips[0], still("x"), still("y")})),
        "a: hold is for stills; in and out say what of a clip is shown; x: in is for clips; hold says how "
        "long a still shows; y: hold and out exclude each other; each says how long it shows; ");

    // Stills show for their hold outside their joins, and what is drawn at the very end is a frame of its
    // own.
    FilmRequest stills = film({"x", "y", "hold=0", "z", "hold=3f"}, {"Row"});
    stills.hold = *parseTime("0");
    EXPECT_EQ(text(laidOut(stills, {still("x"), still("y"), still("z")})),
              "0-29@0 Row 0+30 0-59@0 Row 30+30 30-62@0 ");
    stills.drawsEnds = true;
    stills.shots[2].hold = {};
    EXPECT_EQ(text(laidOut(stills, {still("x"), still("y"), still("z")})),
              "0-29@0 Row 0+30 0-59@0 Row 30+30 30-60@0 ");

    // Overlaps that are too long are shortened in proportion, rounded down, each told.
    FilmRequest tight = film({"a", "+0", "duration=4f", "b", "out=5f", "+0", "duration=3f", "c"});
    tight.shrink = true;
    const LaidOut shrunk = laidOut(tight, clips);
    EXPECT_EQ(text(shrunk), "0-119@0 Row 118+2 118-122@0 Row 121+2 121-180@0 ");
    EXPECT_EQ(shrunk.notes,
              (std::vector<std::string>{"the transition from a to b is shortened from 4 to 2 frames",
                                        "the transition from b to c is shortened from 3 to 2 frames"}));
}

TEST(FilmDescription, HaveTheSizeRateAndAudioThatTheirInputsAgreeOn) {
    FilmRequest request = film({"x", "b", "c"}, {"Row"});
    EXPECT_EQ(laidOut(request, {still("x"), clip("b", 3000), clip("c", 3000)}).film.canvas.size,
              (Size{640, 360}));
    request.firstSize = true;
    Film laid = laidOut(request, {still("x"), clip("b", 3000, 1), clip("c", 3000, 6)}).film;
    EXPECT_EQ(laid.canvas.size, (Size{4001, 3001}));
    EXPECT_EQ(av_cmp_q(laid.canvas.rate, {30, 1}), 0);
    EXPECT_EQ(laid.audio->sampleRate, 48000);
    EXPECT_EQ(laid.audio->channels, 2);
    request.evenSize = true;
    request.shots[1].mute = true;
    request.rate = AVRational{25, 1};
    laid = laidOut(request, {still("x"), clip("b", 3000, 1), clip("c", 3000, 6)}).film;
    EXPECT_EQ(laid.canvas.size, (Size{4000, 3000}));
    EXPECT_EQ(laid.audio->channels, 6);
    EXPECT_EQ(laid.parts[1].frames, 75);
    request.mute = true;
    EXPECT_FALSE(laidOut(request, {still("x"), clip("b", 3000, 1), clip("c", 3000, 6)}).film.audio);
    request.music.file = "song";
    EXPECT_EQ(laidOut(request, {still("x"), clip("b", 3000, 1), clip("c", 3000, 6)}).film.audio->channels, 2);
    request.firstSize = false;
    request.size = Size{641, 360};
    EXPECT_EQ(text(laidOut(request, {still("x"), clip("b", 3000), clip("c", 3000)})),
              "--size: this kind of video needs an even width and height; ");
    // Where the first time lies between two pictures none is lost or shown twice.
    EXPECT_EQ(clip("a", 3500).startSample(48000), 1008);
    EXPECT_EQ(clip("a", 42).frames({24, 1}), 1);
}

TEST(Motions, ShowNothingOutsideThePicture) {
    for (std::uint32_t seed = 0; seed < 100; ++seed)
        for (const double position : {0.0, 0.5, 1.0}) {
            const View view = slowMotion(seed, seed, 1.0 + seed).at(position);
            EXPECT_GE(std::min(view.left, view.top), 0.0) << seed;
            EXPECT_LE(std::max(view.left, view.top) + view.size, 1.0 + 1e-9) << seed;
        }
}

TEST(FilmShape, IsThatOfMostOfTheFilmAndTakesThePlayersLimits) {
    const AVRational none{0, 1}, pal{25, 1}, ntsc{30000, 1001}, film{24000, 1001}, sixty{60, 1};
    const Size hd{1920, 1080}, small{1280, 720}, upright{1080, 1920}, photo{4000, 3000};
    const ShapeWish video{.isVideo = true}, copied{.isVideo = true, .copies = true};
    struct Case {
        std::vector<Showing> inputs;
        ShapeWish wish;
        const char* shape;
    };
    for (const auto& [inputs, wish, shape] : std::vector<Case>{
             // All agree: nothing is told.
             {{{small, pal, 9}, {small, pal, 1}}, video, "1280x720 25/1 "},
             {{{photo, none, 1}, {photo, none, 1}}, {}, "4000x3000 30/1 "},
             {{{photo, none, 1}, {photo, none, 1}}, {.size = photo, .isVideo = true}, "4000x3000 30/1 "},
             {{{{7680, 4320}, {120, 1}, 5}}, video, "7680x4320 120/1 "},
             // Photos become no larger than what players take, and size follows from a quarter.
             {{{photo, none, 1}, {photo, none, 1}},
              video,
              "2880x2160 30/1 2880x2160 (the largest size that "},
             {{{small, pal, 7}, {hd, pal, 3}}, video, "1920x1080 25/1 1920x1080 (the largest size that a "},
             {{{small, pal, 8}, {hd, pal, 2}}, video, "1280x720 25/1 1280x720 (the largest size that a "},
             {{{hd, pal, 2}, {upright, pal, 3}}, video, "1080x1920 25/1 1080x1920 (the shape of most of it)"},
             {{{photo, none, 9}, {{4096, 2160}, pal, 10}},
              video,
              "4096x2160 25/1 4096x2160 (the shape of mo"},
             // The highest rate that more than a tenth has; none above 60, and none that is odd.
             {{{hd, film, 8}, {hd, ntsc, 2}}, video, "1920x1080 30000/1001 29.97 frames per second (as th"},
             {{{hd, film, 9}, {hd, ntsc, 1}}, video, "1920x1080 24000/1001 23.976 frames per second (as t"},
             {{{hd, {240, 1}, 5}, {hd, pal, 5}}, video, "1920x1080 60/1 60 frames per second (as the "},
             {{{hd, {881, 30}, 5}, {hd, pal, 5}},
              video,
              "1920x1080 30000/1001 29.97 frames per second (as t"},
             {{{hd, {881, 30}, 5}, {hd, pal, 5}}, {.rate = pal}, "1920x1080 25/1 "},
             // What most is copied with, where all clips may be; photos never are.
             {{{small, pal, 6, true}, {hd, sixty, 2, true}, {photo, none, 1}, {hd, sixty, 1}},
              copied,
              "1280x720 25/1 1280x720 at 25 frames per second (so that most"},
             {{{small, pal, 6, true}, {hd, sixty, 4, false}},
              copied,
              "1920x1080 60/1 1920x1080 (the largest"},
             {{{small, pal, 5, true}, {hd, sixty, 5, true}}, copied, "1920x1080 60/1 1920x1080 (the largest"},
             {{{hd, ntsc, 4, true}, {hd, {30, 1}, 5, true}},
              copied,
              "1920x1080 30/1 1920x1080 at 30 frames "},
             // So many lines, or columns.
             {{{small, pal, 9}, {upright, pal, 1}}, {.lines = 480}, "854x480 25/1 "},
             {{{small, pal, 1}, {upright, pal, 9}}, {.lines = 1080}, "1080x1920 25/1 "},
         }) {
        const FilmShape made = chooseShape(inputs, wish);
        const std::string why = made.why.empty() ? "" : made.why.substr(21);
        const std::string text = std::to_string(made.size.width) + "x" + std::to_string(made.size.height) +
                                 " " + std::to_string(made.rate.num) + "/" + std::to_string(made.rate.den) +
                                 " " + why;
        EXPECT_TRUE(text == shape || (!why.empty() && text.starts_with(shape))) << text;
    }
}

TEST(Chapters, AbutWhereInputsBeginToShow) {
    std::vector<Source> sources{clip("films/a.b.mp4", 2000), still("c.png"), clip("lavfi:d=1.5", 2000)};
    sources[1].tags = {{"make", "first"}};
    sources[2].tags = {{"make", "second"}, {"model", "second"}};
    sources[2].generated = true;
    const LaidOut laid = laidOut(
        film({"films/a.b.mp4", "+Row", "duration=20f", "c.png", "hold=10f", "+cut", "lavfi:d=1.5"}), sources);
    using Chapters = std::vector<Chapter>;
    EXPECT_EQ(chaptersOf(laid.film, 0, laid.film.frames()),
              (Chapters{{"a.b", 0, 40}, {"c", 40, 70}, {"lavfi:d=1.5", 70, 130}}));
    EXPECT_EQ(chaptersOf(laid.film, 40, 80), (Chapters{{"c", 0, 30}, {"lavfi:d=1.5", 30, 40}}));
    EXPECT_EQ(laid.film.tags, sources[1].tags);
}

}  // namespace tests
