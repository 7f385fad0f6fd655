// Films of which most is copied packet by packet: every copied picture is its source's to the byte.
#include <algorithm>
#include <cmath>
#include <complex>
#include <map>
#include <sstream>

#include "command.h"

namespace tests {

class Copies : public CommandTest {
   protected:
    /// A clip of four seconds; `coding` are FFmpeg's options for its pictures.
    void clip(const std::string& name, const std::string& coding, const std::string& picture = "testsrc2",
              const std::string& rate = "30", const std::string& audio = "-c:a aac") const {
        ffmpeg(
            "-f lavfi -i " + picture + "=s=160x96:r=" + rate +
            " -f lavfi -i \"aevalsrc=0.3*sin(2764*t)|0.2*sin(1800*t+400*t*t):s=48000\" -t 4 -pix_fmt yuv420p "
            "-c:v libx264 -preset veryfast " +
            coding + " " + audio + " " + name);
    }

    /// A picture as it is stored: when it shows, in seconds from the first one, and its checksum.
    struct Shown {
        double time;
        std::string sum;
    };
    std::vector<Shown> pictures(const std::string& name) const {
        std::istringstream lines(shell(in("ffmpeg -v warning -noautorotate -i " + name +
                                          " -map 0:v:0 -copyts -fps_mode passthrough -enc_time_base -1 -f "
                                          "framemd5 - -map 0:a? -f null - 2>messages"))
                                     .text());
        std::vector<Shown> shown;
        double unit = 0.0;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("#tb 0: "))
                unit = std::stod(line.substr(7)) / std::stod(line.substr(line.find('/') + 1));
            if (line.front() == '#') continue;
            std::istringstream fields(line.substr(line.find(',', line.find(',') + 1) + 1));
            std::int64_t time = 0;
            fields >> time;
            shown.push_back({static_cast<double>(time) * unit, line.substr(line.rfind(' ') + 1)});
        }
        for (std::size_t i = shown.size(); i-- > 0;) shown[i].time -= shown.front().time;
        return shown;
    }

    /// Those of a clip that films are made of, looked at once.
    const std::vector<Shown>& picturesOfSource(const std::string& name) const {
        const auto [held, isNew] = sources_.try_emplace(name);
        if (isNew) held->second = pictures(name);
        return held->second;
    }

    /// Renders a film, no frame of which may be copied wrongly or be shown at another time, and returns how
    /// many are copied. No picture but the first of what is copied in one piece may be `farthest` (seconds)
    /// from its place.
    std::int64_t copied(const std::string& arguments, const std::string& output,
                        double farthest = 0.0012) const {
        const nlohmann::json film = plan(arguments + " -o " + output);
        const Outcome outcome = vantle("render " + arguments + " -f -o " + output);
        EXPECT_EQ(outcome.status, 0) << arguments << outcome.text();
        EXPECT_EQ(outcome.text().find("all is encoded"), std::string::npos) << outcome.text();
        const std::vector<Shown> made = pictures(output);
        EXPECT_EQ(shell(in("cat messages")).text(), "") << arguments;
        const std::string rateText = film["rate"];
        const double rate = std::stod(rateText) / std::stod(rateText.substr(rateText.find('/') + 1));
        EXPECT_NEAR(made.back().time, (film["frames"].get<double>() - 1) / rate, 1.6 / rate) << arguments;
        std::int64_t count = 0;
        for (const nlohmann::json& stretch : film["copied"]) {
            const std::int64_t first = stretch["first"];
            const std::int64_t end = first + stretch["frames"].get<std::int64_t>();
            count += end - first;
            for (const nlohmann::json& held : film["timeline"]) {
                if (!held.contains("input")) continue;
                const nlohmann::json& entry = held["input"];
                // Cut to another it may reach into this, but not begin and end in it.
                if (first < entry["first"] || end - 1 > entry["last"]) continue;
                const std::int64_t offset =
                    entry["first"].get<std::int64_t>() - std::llround(entry["in"].get<double>() * rate);
                std::vector<Shown> own;
                std::vector<Shown> shown;
                for (const Shown& picture : picturesOfSource(entry["file"]))
                    if (const auto frame = std::llround(picture.time * rate) + offset;
                        frame >= first && frame < end)
                        own.push_back(picture);
                for (const Shown& picture : made)
                    if (const double frame = picture.time * rate + 0.25;
                        frame >= static_cast<double>(first) && frame < static_cast<double>(end))
                        shown.push_back(picture);
                EXPECT_EQ(shown.size(), own.size()) << arguments << ": frames from " << first;
                for (std::size_t i = 0; i < std::min(shown.size(), own.size()); ++i) {
                    EXPECT_EQ(shown[i].sum, own[i].sum) << arguments << ": at " << shown[i].time;
                    const double place = own[i].time + static_cast<double>(offset) / rate;
                    EXPECT_NEAR(shown[i].time, place, i > 0 ? farthest : 0.5 / rate) << arguments;
                }
            }
        }
        return count;
    }

    /// The pictures of a film as a player shows them in its frames, small and grey.
    Bytes looks(const std::string& name) const {
        return shell(in("ffmpeg -v error -i " + name +
                        " -vf \"setpts=round(PTS*TB*30)/30/TB,fps=30,scale=16:16:flags=area,format=gray\" "
                        "-f rawvideo -"))
            .output;
    }

   private:
    mutable std::map<std::string, std::vector<Shown>> sources_;
};

TEST_F(Copies, AreExactWhateverTheEncodersWereToldToDo) {
    clip("plain.mp4", "-g 25");
    clip("no_b.mov", "-g 20 -bf 0 -slices 3", "mandelbrot");
    clip("pyramid.mp4",
         "-g 30 -bf 8 -refs 6 -x264-params b-adapt=0:aud=1:nal-hrd=vbr:vbv-maxrate=900:vbv-bufsize=900");
    clip("baseline.mkv", "-g 15 -profile:v baseline", "mandelbrot");
    clip("cavlc.mp4", "-g 12 -x264-params cabac=0:repeat-headers=1");
    clip("intra.mp4", "-g 1");
    const std::string join = " -t Row_split --duration 0.5 --copy always";
    EXPECT_GT(copied("plain.mp4 in=0.3 no_b.mov out=3.6" + join, "a.mp4"), 150);
    EXPECT_GT(copied("no_b.mov pyramid.mp4 baseline.mkv" + join + " --verify", "a.mov"), 220);
    EXPECT_GT(copied("baseline.mkv cavlc.mp4 intra.mp4 plain.mp4" + join, "a.mkv"), 300);
    EXPECT_EQ(copied("intra.mp4 in=7f out=8f +cut plain.mp4 +cut no_b.mov --copy always", "a.mp4"), 215);
    // No frame is ever encoded alone beside one with which decoding may begin: the next such one is taken.
    EXPECT_EQ(plan("no_b.mov in=19f +cut plain.mp4 -o a.mp4")["copied"][0]["first"], 21);
    EXPECT_GT(copied("no_b.mov in=19f +cut pyramid.mp4 out=20f +cut no_b.mov --copy always", "a.mp4"), 100);
    // Or what is copied before it ends earlier.
    const nlohmann::json shortened = plan("no_b.mov out=20f +cut no_b.mov in=19f -o a.mp4")["copied"];
    EXPECT_EQ(shortened[0]["frames"], 19);
    EXPECT_EQ(shortened[1]["first"], 21);
    clip("film.mp4", "-g 30 -bf 3", "testsrc2", "24000/1001");
    clip("film2.mp4", "-g 24 -bf 0", "mandelbrot", "24000/1001");
    EXPECT_GT(copied("film.mp4 film2.mp4" + join, "a.mp4"), 120);
    clip("fast.mp4", "-g 60", "testsrc2", "60000/1001");
    EXPECT_GT(copied("fast.mp4 fast.mp4" + join, "a.mp4"), 300);
}

TEST_F(Copies, EnterHevcAtKeyPicturesThatOthersReferAcross) {
    const auto hevc = [&](const std::string& name, const std::string& picture,
                          const std::string& parameters) {
        clip(name, "-c:v libx265 -preset ultrafast -x265-params log-level=error:" + parameters, picture);
    };
    hevc("open.mp4", "testsrc2", "keyint=25:bframes=4");
    hevc("closed.mkv", "mandelbrot", "keyint=20:open-gop=0:bframes=0");
    const std::string join = " -t Row_split --duration 0.5 --copy always";
    EXPECT_GT(copied("open.mp4 open.mp4 in=0.4 closed.mkv" + join, "a.mp4"), 220);
    EXPECT_GT(copied("closed.mkv open.mp4" + join + " --verify", "a.mkv"), 150);
    // Those which were entered across others say that nothing is shown before them (a type of 18).
    render("open.mp4 open.mp4 in=0.4" + join + " -f -o a.mp4");
    EXPECT_EQ(shell(in("ffmpeg -v verbose -i a.mp4 -c copy -bsf:v trace_headers -f null - 2>&1 | "
                       "grep -c 'nal_unit_type .* = 18$'"))
                  .text(),
              "1\n");
}

TEST_F(Copies, EnterH264AtRecoveryPointsAcrossWhichPicturesAreReordered) {
    // Slices with references that are let go, weights, lists of their own, in either coding.
    const std::string open = "-preset medium -g 25 -x264-params open-gop=1:b-adapt=0:scenecut=0:";
    clip("pyramid.mp4", open + "bframes=3:slices=6");
    clip("cavlc.mp4", open + "bframes=5:cabac=0:slices=3", "mandelbrot");
    clip("fade.mov", open + "bframes=2:ref=1 -vf fade=in:0:90");
    ffmpeg("-i pyramid.mp4 -c copy pyramid.ts");
    const std::string join = " -t Row_split --duration 0.5 --copy always";
    EXPECT_GT(copied("pyramid.mp4 cavlc.mp4 in=0.3 fade.mov in=0.6" + join, "a.mp4"), 180);
    EXPECT_GT(copied("cavlc.mp4 pyramid.ts in=0.3 pyramid.mp4 in=1" + join + " --verify", "a.mkv"), 180);
}

TEST_F(Copies, AreLeftWhereAConditionFailsAndItIsSaidWhich) {
    clip("plain.mp4", "-g 25");
    clip("refresh.mp4", "-x264-params intra-refresh=1:keyint=30");
    clip("one.mp4", "-g 999 -sc_threshold 0");
    clip("interlaced.mp4", "-g 25 -flags +ildct+ilme -x264-params tff=1");
    clip("wide.mp4", "-g 25 -aspect 2:1");
    clip("slow.mp4", "-g 25", "testsrc2", "25");
    clip("small.mp4", "-g 25 -vf scale=80:48");
    clip("other.mp4", "-c:v mpeg4");
    clip("colours.mp4", "-g 25 -colorspace bt709");
    ffmpeg("-i plain.mp4 -c copy plain.avi");
    ffmpeg("-i plain.mp4 -c copy -metadata:s:v:0 rotate=180 turned.mp4");
    ffmpeg("-i plain.mp4 -frames:v 1 still.png");
    for (const auto& [name, says] : {std::pair{"refresh.mp4", "has no keyframe"},
                                     {"one.mp4", "has no keyframe"},
                                     {"interlaced.mp4", "interlaced"},
                                     {"wide.mp4", "is 192x96 and the film 160x96"},
                                     {"slow.mp4", "25 pictures a second and the film 30"},
                                     {"small.mp4", "is 80x48 and the film 160x96"},
                                     {"other.mp4", "coded as mpeg4"},
                                     {"colours.mp4", "description of its colours"},
                                     {"plain.avi", "is no .mp4"},
                                     {"turned.mp4", "held otherwise than plain.mp4"},
                                     {"still.png", "is no clip"},
                                     {"lavfi:testsrc2=s=160x96:r=30:d=2", "is no clip"}}) {
        const std::string film = std::string("plain.mp4 ") + name + " -t 0 --duration 0.5";
        const Outcome refused = vantle("render " + film + " --copy always -o a.mp4");
        EXPECT_EQ(refused.status, 1);
        EXPECT_NE(refused.text().find(std::string(name) + ": "), std::string::npos) << refused.text();
        EXPECT_NE(refused.text().find(says), std::string::npos) << name << ": " << refused.text();
        EXPECT_EQ(std::ranges::count(refused.text(), '\n'), 1);
        EXPECT_FALSE(files().contains("a.mp4"));
        const nlohmann::json planned = plan(film + " -o a.mp4");
        EXPECT_GT(planned["copiedShare"], 0.3) << name;
        EXPECT_EQ(planned["timeline"][0]["input"]["copied"], 105);
        EXPECT_EQ(planned["timeline"][2]["input"]["copied"], 0);
        EXPECT_NE(planned["timeline"][2]["input"]["why"].get<std::string>().find(says), std::string::npos);
        // That stills and generated inputs are encoded is no news.
        if (std::string(says) == "is no clip") {
            EXPECT_EQ(planned["warnings"].size(), 0U);
        } else {
            EXPECT_NE(planned["warnings"].back().get<std::string>().find(says), std::string::npos);
        }
    }
    EXPECT_EQ(plan("still.png lavfi:color=red:s=160x96 -t 0 -o a.mp4")["warnings"].size(), 0U);
    for (const std::string options :
         {"--copy never", "--encoder-option crf=30", "--size 80x48", "--encoder libx265"})
        EXPECT_EQ(plan("plain.mp4 plain.mp4 -t 0 -o a.mp4 " + options)["copiedShare"], 0.0) << options;
    EXPECT_EQ(vantle("render plain.mp4 plain.mp4 -t 0 --copy always -o a.webm").status, 2);
    EXPECT_EQ(vantle("render plain.mp4 plain.mp4 -t 0 --copy always --encoder libx265 -o b.mp4").status, 1);
    EXPECT_FALSE(files().contains("b.mp4"));
}

TEST_F(Copies, OfClipsAsPhonesAndCamerasMakeThemShowWhatTheyDoWhenTheyDo) {
    // Pictures that are missing, and others late or early by 2 ms; held as phones are.
    const std::string uneven =
        "-vf \"settb=1/90000,select='not(eq(mod(n,37),5))',setpts='PTS+floor((random(1)-0.5)*360)'\" "
        "-fps_mode passthrough -enc_time_base 1/90000 -video_track_timescale 90000 -g 40 ";
    clip("one.mp4", uneven + "-bf 3");
    clip("two.mp4", uneven + "-bf 0", "mandelbrot");
    for (const std::string name : {"one", "two"})
        ffmpeg("-i " + name + ".mp4 -c copy -metadata:s:v:0 rotate=90 held_" + name + ".mp4");
    const std::string join = " -t Row_split --duration 0.5 --copy always";
    EXPECT_GT(copied("one.mp4 two.mp4 in=0.6 one.mp4" + join, "a.mp4", 1e-5), 200);
    EXPECT_GT(copied("one.mp4 two.mp4" + join + " --verify", "a.mkv"), 140);
    const std::string held = "one.mp4 turn=270 held_two.mp4 in=0.6";
    EXPECT_GT(copied(held + join, "a.mov", 1e-5), 120);
    EXPECT_EQ(probe("a.mov", "stream_side_data=rotation"),
              probe("held_one.mp4", "stream_side_data=rotation"));
    EXPECT_EQ(plan(held + join + " -o a.mov")["orientation"]["turn"], 270);
    const Bytes seen = looks("a.mov");
    render(held + " -t Row_split --duration 0.5 --copy never -o b.mp4");
    const Bytes meant = looks("b.mp4");
    ASSERT_LE(std::abs(std::ssize(seen) - std::ssize(meant)), 256);  // the last picture may be missing
    for (std::size_t i = 0; i < std::min(seen.size(), meant.size()); ++i)
        ASSERT_NEAR(seen[i], meant[i], 24) << "picture " << i / 256;
    // One that was held otherwise stands upright between them; a file that cannot say how is encoded.
    EXPECT_GT(copied(held + " held_one.mp4 two.mp4 -t 0", "a.mp4", 1e-5), 100);
    EXPECT_EQ(plan(held + " -t 0 --copy auto -o a.mkv")["copied"].size(), 0U);
    // Cameras' streams, a cut inside a group of pictures, pixels that are not square.
    clip("plain.mp4", "-g 25");
    ffmpeg("-i plain.mp4 -c copy plain.m2ts");
    ffmpeg("-i plain.mp4 -c copy plain.3gp");
    ffmpeg("-ss 0.5 -i plain.mp4 -c copy cut.mp4");
    clip("wide.mp4", "-g 25 -vf setsar=4/3");
    EXPECT_GT(copied("plain.m2ts plain.3gp in=0.3 plain.m2ts in=1" + join, "a.mp4"), 230);
    EXPECT_GT(copied("cut.mp4 plain.mp4 cut.mp4 in=1" + join, "a.mp4"), 200);
    EXPECT_GT(copied("wide.mp4 wide.mp4" + join, "a.mp4"), 150);
    EXPECT_EQ(probe("a.mp4", "stream=width,height,sample_aspect_ratio"), "160,96,4:3");
    // What is 0.1 % slower than the film is copied at its own pace as well.
    clip("slower.mp4", "-g 25", "testsrc2", "30000/1001");
    EXPECT_GT(copied("plain.mp4 slower.mp4" + join, "a.mp4", 1e-5), 180);
}

TEST_F(Copies, KeepAudioInPlaceWithoutAClick) {
    clip("plain.mp4", "-g 25");
    clip("mono.mp4", "-g 25", "testsrc2", "30", "-ac 1 -c:a aac");
    clip("mute.mp4", "-g 25", "testsrc2", "30", "-an");
    const std::string film = "plain.mp4 in=0.31 plain.mp4 out=3.57 mute.mp4 plain.mp4 -t 0 --duration 0.7 ";
    render(film + "--copy always -o copied.mp4");
    render(film + "--copy never --audio-encoder pcm_s16le -o mixed.mkv");
    const std::vector<double> made = audio("copied.mp4");
    const std::vector<double> meant = audio("mixed.mkv");
    ASSERT_GE(made.size(), meant.size());
    constexpr std::size_t window = 512;
    constexpr int farthest = 512;  // samples by which a part's audio may lie aside
    for (std::size_t at = window; at + 2 * window < meant.size(); at += window / 2) {
        double nearest = 1.0;
        for (int shift = -farthest; shift <= farthest; ++shift) {
            double difference = 0.0;
            for (std::size_t i = at; i < at + window; i += 3)
                difference =
                    std::max(difference, std::abs(made[i + static_cast<std::size_t>(shift)] - meant[i]));
            nearest = std::min(nearest, difference);
        }
        // Where audio sets in or stops at once, coding smears it.
        const bool edge = std::abs(static_cast<double>(at) / 48000 - 6.56) < 0.03 ||
                          std::abs(static_cast<double>(at) / 48000 - 9.16) < 0.03;
        EXPECT_LT(nearest, edge ? 0.4 : 0.07) << "sample " << at;
    }
    EXPECT_EQ(probe("copied.mp4", "stream=duration"), "13.166667\n13.166000");
    // Audio of several forms is encoded, and the pictures are copied all the same.
    EXPECT_GT(copied("plain.mp4 mono.mp4 -t 0 --copy always", "a.mp4"), 150);
    const std::string louder = "plain.mp4 plain.mp4 volume=2 mono.mp4 mute=yes -t 0 --copy always";
    EXPECT_GT(copied(louder, "a.mp4"), 150);
    EXPECT_EQ(plan(louder + " -o a.mp4")["audioWhy"],
              nlohmann::json{"plain.mp4: its volume is changed by +6.0 dB"});
    const std::string music = "plain.mp4 plain.mp4 -t 0 --copy always --music mono.mp4";
    EXPECT_GT(copied(music, "a.mp4"), 150);
    EXPECT_EQ(plan(music + " -o a.mp4")["audioWhy"], nlohmann::json{"music lies under the film"});
}

TEST_F(Copies, AudioAsTheFilmFadesThemEachClipsToneInOnePiece) {
    const auto tone = [&](const std::string& name, int hertz) {
        ffmpeg(
            "-f lavfi -i testsrc2=s=64x48:r=25 -f lavfi -i \"aevalsrc=0.5*sin(2*PI*" + std::to_string(hertz) +
            "*t):s=48000\" -t 4 -pix_fmt yuv420p -c:v libx264 -preset ultrafast -g 25 -c:a aac -b:a 128k " +
            name);
    };
    tone("a.mp4", 440);
    tone("b.mp4", 1000);
    std::vector<double> film;
    // A tone's strength and phase in the 50 ms (whole waves of both) from a time on.
    const auto heard = [&](double hertz, double seconds) {
        const auto first = static_cast<std::size_t>(std::llround(seconds * 48000));
        std::complex<double> sum;
        for (std::size_t at = first; at < first + 2400; ++at)
            sum += film.at(at) * std::polar(1.0 / 1200, -2 * M_PI * hertz * static_cast<double>(at) / 48000);
        return sum;
    };
    const auto make = [&](const std::string& arguments) {
        render(arguments + " -f -o x.mp4 --copy always");
        film = audio("x.mp4");
    };
    // Where it is copied and where it is mixed, a clip's audio lies in the same place.
    make("a.mp4 in=9f b.mp4 -t 0 --duration 1");
    for (int window = 2; window < 73; ++window) {
        const double at = 0.05 * window;
        const auto here = heard(440, at);
        EXPECT_NEAR(std::abs(here), 0.5 * std::sin(M_PI / 2 * std::clamp(3.615 - at, 0.0, 1.0)), 0.02) << at;
        EXPECT_NEAR(at < 3.5 ? std::arg(here / heard(440, 0.1)) : 0.0, 0.0, 0.1) << at;
    }
    for (int window = 58; window < 131; ++window)
        EXPECT_NEAR(std::arg(heard(1000, 0.05 * window) / heard(1000, 6.0)), 0.0, 0.1) << window;
    // One that lies in its join alone, at either end of the film.
    make("a.mp4 b.mp4 out=1 -t 0 --duration 1");
    EXPECT_NEAR(std::abs(heard(440, 3.9)), 0.06, 0.03);
    EXPECT_NEAR(std::abs(heard(1000, 3.9)), 0.5, 0.03);
    make("a.mp4 out=1 b.mp4 -t 0 --duration 1");
    EXPECT_NEAR(std::abs(heard(440, 0.05)), 0.5, 0.03);
    EXPECT_NEAR(std::abs(heard(1000, 0.05)), 0.06, 0.03);
    // Nothing of what was cut off is heard.
    make("a.mp4 out=2.24 +cut b.mp4 in=1");
    EXPECT_NEAR(std::abs(heard(440, 2.25)), 0.0, 0.005);
    EXPECT_NEAR(std::abs(heard(1000, 2.25)), 0.5, 0.02);
}

TEST_F(Copies, LeaveWhatCannotBeCopiedAsItWouldBeWithoutThem) {
    using Lines = std::vector<std::string>;
    const auto warnings = [&](const std::string& arguments) {
        return plan(arguments + " -o a.mp4")["warnings"].get<Lines>();
    };
    clip("plain.mp4", "-g 25");
    clip("long.mp4", "-t 16 -g 999 -sc_threshold 0 -force_key_frames 14.5", "mandelbrot");
    // What is longer than a seam, or no seam, is as large as in other films.
    const auto isAsLargeAsOthers = [&](const std::string& film, int atLeast) {
        EXPECT_GT(copied(film, "a.mp4"), atLeast);
        render(film + " --copy never -o whole.mp4 -f");
        EXPECT_LT(std::ssize(contents("a.mp4")), 1.3 * static_cast<double>(contents("whole.mp4").size()))
            << film;
    };
    isAsLargeAsOthers("plain.mp4 long.mp4 -t Row_split --verify", 120);
    EXPECT_EQ(warnings("long.mp4 in=1f out=13 plain.mp4 long.mp4 in=1f out=13 -t 0").front(),
              "nothing is copied: 40 of 838 frames are too few; more keyframes, or shorter joins, help");
    // Joins of what no encoder makes are encoded otherwise; without joins there is nothing to encode.
    clip("rgb.mp4", "-g 25 -c:v libx264rgb -pix_fmt rgb24");
    const std::string why =
        "rgb.mp4: joins cannot be encoded like it: libx264 does not take pictures of gbrp";
    EXPECT_EQ(warnings("rgb.mp4 rgb.mp4 -t 0"), Lines{"nothing is copied: " + why});
    const Outcome encoded = vantle("render rgb.mp4 rgb.mp4 -t 0 -o b.mp4");
    EXPECT_EQ(encoded.text(), "vantle: nothing is copied: " + why + "\nb.mp4: 210 frames of 160x96\n");
    EXPECT_EQ(vantle("render rgb.mp4 rgb.mp4 -t 0 -o c.mp4 --copy always").status, 1);
    EXPECT_EQ(copied("rgb.mp4 +cut rgb.mp4", "a.mp4"), 240);
    // Nor are pictures in a graphics card's memory to be had.
    EXPECT_EQ(vantle("render rgb.mp4 rgb.mp4 -t 0 -o c.mp4 --encoder h264_vaapi").status, 2);
    EXPECT_EQ(warnings("rgb.mp4 plain.mp4 plain.mp4 -t 0"), Lines{"not copied: " + why});
    isAsLargeAsOthers("rgb.mp4 plain.mp4 plain.mp4 -t 0", 100);
    // What is copied loses nothing.
    clip("deep.mp4", "-g 25 -pix_fmt yuv420p10");
    clip("full.mp4", "-g 25 -pix_fmt yuv420p10 -color_range pc");
    const std::string lost = "deep.mp4: its colours of 10 bits become ones of 8";
    EXPECT_EQ(warnings("deep.mp4 deep.mp4 -t 0"), Lines{lost + " in joins"});
    EXPECT_EQ(warnings("deep.mp4 +cut deep.mp4"), Lines{});
    EXPECT_EQ(warnings("deep.mp4 deep.mp4 -t 0 --copy never"), Lines{lost});
    EXPECT_NE(warnings("deep.mp4 full.mp4 -t 0").back().find("full.mp4: its range of colours"),
              std::string::npos);
    EXPECT_GT(plan("plain.mp4 plain.mp4 -t 0 --fps 30 -o a.mp4")["copiedShare"], 0.5);
    EXPECT_EQ(plan("plain.mp4 plain.mp4 -t 0 --fps 25 -o a.mp4")["copiedShare"], 0.0);
    // Damage is told of beside copies too.
    shell(in(
        "cp plain.mp4 bad.mp4; at=$(ffprobe -v error -select_streams v -show_entries packet=pos -of csv=p=0 "
        "bad.mp4 | sed -n 40p | tr -d ,); printf '\\0\\0\\0\\1\\377\\377' | dd of=bad.mp4 bs=1 seek=$at "
        "conv=notrunc status=none"));
    const Outcome damaged = vantle("render plain.mp4 bad.mp4 plain.mp4 -t 0 -f -o a.mp4");
    EXPECT_NE(damaged.text().find("bad.mp4: passed over 1 damaged packet\n"), std::string::npos)
        << damaged.text();
    EXPECT_NE(damaged.text().find(" of them copied\n"), std::string::npos) << damaged.text();
}

TEST_F(Copies, AndWhatIsEncodedShowTheSamePicturesWhenAudioBeginsFirst) {
    // In thousandths of a second, from one on at which the audio has run for 21: half a picture later.
    for (const std::string rate : {"24", "24000/1001"}) {
        ffmpeg(
            "-f lavfi -i \"color=s=64x64:r=" + rate +
            ",format=yuv420p,geq=lum=16+2*N:cb=128:cr=128\" -f lavfi -i sine=r=48000 -t 4 -c:v libx264 -g 24 "
            "-crf 4 -c:a aac clip.mkv");
        const Outcome outcome =
            vantle("render clip.mkv in=5f out=95f +cut clip.mkv in=7f out=95f -f -o a.mp4");
        EXPECT_NE(outcome.text().find("178 frames of 64x64, 138 of them copied"), std::string::npos)
            << outcome.text();
        const Pictures film = decode("a.mp4", 64, 64);
        ASSERT_EQ(film.count, 178U);
        for (int frame = 0; frame < 178; ++frame)
            EXPECT_NEAR(film.luma(static_cast<std::size_t>(frame), 32, 32),
                        16 + 2 * (frame < 90 ? frame + 5 : frame - 83), 1)
                << frame;
    }
}

}  // namespace tests
