// What `vantle render` makes of real inputs.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

#include "command.h"

namespace tests {

namespace {

/// Loudness of a moment of a file's audio: root mean square over 20 ms.
double loudness(const std::vector<double>& samples, double seconds) {
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(seconds * 8000.0);
    return std::sqrt(std::inner_product(first, first + 160, first, 0.0) / 160.0);
}

/// The luma of a counting clip's picture.
double number(std::size_t picture) { return 40.0 + 3.0 * static_cast<double>(picture); }

constexpr const char* tone = "sine=frequency=400:sample_rate=44100,volume=4";
constexpr const char* burstAtOneSecond =
    "aevalsrc='if(between(t,1,1.2),0.5*sin(2000*t),0)':sample_rate=48000";

}  // namespace

using Render = CommandTest;

TEST_F(Render, JoinsClipsWithoutLosingOrRepeatingAFrame) {
    countingClip("from.mp4", 50, 90);
    countingClip("to.mp4", 40, 170);
    render("from.mp4 to.mp4 -t Row_vantle --duration 0.4 --copy never -o joined.mp4");
    EXPECT_EQ(probe("joined.mp4", "stream=codec_name,nb_read_frames,duration"), "h264,3.200000,80");
    const Pictures joined = decode("joined.mp4", 64, 320);
    ASSERT_EQ(joined.count, 80U);
    for (std::size_t i = 0; i < 80; ++i) {
        if (i >= 40 && i < 50) continue;
        EXPECT_NEAR(joined.luma(i, 60, 4), number(i < 50 ? i : i - 40), 1.5) << "frame " << i;
    }

    // The overlap, without a lossy encoder between: bands ten rows high open from each side in turn.
    render("from.mp4 to.mp4 -t Row_vantle --duration 0.4 --frames 40-50 -o f_%d.png");
    for (std::size_t k = 0; k <= 10; ++k) {
        const Pictures picture = decode("f_" + std::to_string(40 + k) + ".png", 64, 320);
        const auto shows = [&](int x, int y) { return static_cast<double>(picture.luma(0, x, y)); };
        if (k <= 7) {
            EXPECT_NEAR(shows(63, 4), number(40 + k), 1.5) << "FROM in frame " << k;
        }
        if (k >= 3) {
            EXPECT_NEAR(shows(63, 14), number(k), 1.5) << "TO in frame " << k;
        }
    }
    const Pictures middle = decode("f_45.png", 64, 320);
    EXPECT_NEAR(middle.luma(0, 33, 4), number(45), 1.5);
    EXPECT_NEAR(middle.luma(0, 30, 4), number(5), 1.5);
    EXPECT_NEAR(middle.luma(0, 33, 14), number(5), 1.5);
    EXPECT_NEAR(middle.luma(0, 30, 14), number(45), 1.5);

    // A part of the frames is that part of the whole, and other rates keep the time.
    render("from.mp4 to.mp4 -t Row_vantle --duration 0.4 --frames 44-46 -o part.mkv");
    const Pictures part = decode("part.mkv", 64, 320);
    ASSERT_EQ(part.count, 3U);
    EXPECT_NEAR(part.luma(1, 56, 14), number(5), 3);
    render("from.mp4 to.mp4 -t Row_vantle --duration 0.4 --fps 50 -o faster.mp4");
    EXPECT_EQ(probe("faster.mp4", "stream=nb_read_frames,r_frame_rate"), "50/1,160");
}

TEST_F(Render, CrossfadesAudioInStepWithThePictures) {
    countingClip("from.mp4", 50, 90, tone);
    countingClip("to.mp4", 50, 170, burstAtOneSecond);
    countingClip("mute.mp4", 50, 170);
    const auto audio = [&](const std::string& inputs) {
        render(inputs + " -t 0 --duration 0.8 -f -o joined.mp4");
        EXPECT_EQ(probe("joined.mp4", "stream=codec_name,duration"), "h264,3.200000\naac,3.200000");
        return this->audio("joined.mp4", "-ar 8000");
    };
    const std::vector<double> both = audio("from.mp4 to.mp4");
    const double full = loudness(both, 1.0);
    EXPECT_GT(full, 0.1);
    EXPECT_NEAR(loudness(both, 1.6), full * 0.707, full / 10);  // half way through the overlap, 1.2 s to 2 s
    EXPECT_LT(loudness(both, 2.05), full / 50);
    EXPECT_LT(loudness(both, 2.17), full / 50);  // TO's burst is due at 1.2 s + 1 s
    EXPECT_GT(loudness(both, 2.21), 0.2);

    // Beside silence it fades too.
    const std::vector<double> onlyFrom = audio("from.mp4 mute.mp4");
    EXPECT_NEAR(loudness(onlyFrom, 1.6), full * 0.707, full / 10);
    EXPECT_LT(loudness(onlyFrom, 2.05), full / 50);
    const std::vector<double> onlyTo = audio("mute.mp4 to.mp4");
    EXPECT_LT(loudness(onlyTo, 2.17), full / 50);
    EXPECT_GT(loudness(onlyTo, 2.21), 0.2);
}

TEST_F(Render, WritesNumberedPicturesOfStills) {
    ffmpeg("-f lavfi -i gradients=s=101x75:c0=red:c1=blue:x0=50:y0=0:x1=50:y1=74 -frames:v 1 from.png");
    ffmpeg("-f lavfi -i testsrc=s=202x150 -frames:v 1 -q:v 2 to.jpg");
    render("from.png to.jpg -t 2 --duration 0.2 --size first -o f_%03d.png");  // 30 per second: 6 frames and
                                                                               // the end
    EXPECT_EQ(files(), (std::set<std::string>{"from.png", "to.jpg", "f_000.png", "f_001.png", "f_002.png",
                                              "f_003.png", "f_004.png", "f_005.png", "f_006.png"}));
    EXPECT_EQ(rgb("f_000.png"), rgb("from.png"));
    // Every way of naming a transition and a position gives the same picture.
    render("from.png to.jpg -t col_VANTLE --duration 0.2 --at 0.5 -o name.png");
    render("from.png to.jpg -t trcolvantle --duration 0.2 --frames 3-3 -o n_%d.png");
    render("from.png to.jpg -t 25045aaa-9aca-445C-B24C-21052C9B8D27 --at 0.5 -o guid.png");
    render("from.png to.jpg -t 1 --at 1 --size first -o end.png");
    EXPECT_EQ(contents("name.png"), contents("n_3.png"));
    EXPECT_EQ(contents("name.png"), contents("guid.png"));
    EXPECT_EQ(rgb("end.png"), rgb("f_006.png"));
    render("from.png to.jpg -t 1 --fps 100 --at 0.29 -o at.png");
    render("from.png to.jpg -t 1 --fps 100 --frames 29-29 -o at_%d.png");
    EXPECT_EQ(contents("at.png"), contents("at_29.png"));
    EXPECT_NE(rgb("end.png"), rgb("name.png"));

    // A sequence reads as a video; a video of odd pictures gets an even size.
    render("f_%03d.png to.jpg -t 0 --fps 25 --size first --duration 0.16 -o back.mp4");
    EXPECT_EQ(probe("back.mp4", "stream=width,height,nb_read_frames"), "100,74,32");  // 7 + 25 held
}

TEST_F(Render, WritesEveryKindOfVideoFromGeneratedSources) {
    const std::string film =
        "lavfi:testsrc2=s=128x72:r=25 lavfi:smptebars=s=96x72:r=25:d=0.8 -t 1 "
        "--size first --duration 0.4 --hold 0.2 -o ";
    for (const auto& [name, codec] :
         {std::pair{"a.mkv", "h264"}, {"a.mov", "h264"}, {"a.webm", "vp9"}, {"a.gif", "gif"}}) {
        render(film + name);
        // FROM never ends, so it is held; TO plays its 20 frames.
        EXPECT_EQ(probe(name, "stream=codec_name,width,height,nb_read_frames"),
                  std::string(codec) + ",128,72,25");
    }
    EXPECT_LT(fs::file_size(folder_ / "a.gif"),
              60'000);  // of one palette: what stands still is not stored again
    render(film + "a.webp");
    // FFmpeg does not read it: its pictures last a second in all, over and over again.
    const Bytes bytes = contents("a.webp");
    const std::string_view webp(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    int milliseconds = 0;
    for (std::size_t at = 0; (at = webp.find("ANMF", at)) != std::string_view::npos; at += 4)
        milliseconds += bytes.at(at + 20) + 256 * bytes.at(at + 21);
    EXPECT_EQ(milliseconds, 1000);
    EXPECT_EQ(webp.substr(webp.find("ANIM") + 12, 2), std::string(2, char{}));
}

TEST_F(Render, FitsAnInputOfAnotherShape) {
    ffmpeg("-f lavfi -i color=black:s=64x32 -frames:v 1 wide.png");
    ffmpeg("-f lavfi -i color=white:s=32x32 -vf drawbox=w=32:h=4:color=red:t=fill -frames:v 1 square.png");
    const auto rowsOfEnd = [&](const std::string& fit) {
        render("wide.png square.png -t 0 --at 1 -f -o end.png --fit " + fit);
        return decode("end.png", 64, 32, "gray", 2);
    };
    const Pictures contain = rowsOfEnd("contain");
    EXPECT_EQ(contain.luma(0, 8, 16), 0);
    EXPECT_EQ(contain.luma(0, 32, 16), 255);
    EXPECT_LT(contain.luma(0, 32, 0), 128);  // the red bar on top
    const Pictures blur = rowsOfEnd("blur");
    EXPECT_EQ(blur.luma(0, 32, 16), 255);
    for (const int x : {2, 60}) EXPECT_NEAR(blur.luma(0, x, 16), 166, 4);  // white, darkened
    const Pictures cover = rowsOfEnd("cover");
    EXPECT_EQ(cover.luma(0, 0, 0), 255);  // the bar is cut off
    const Pictures stretch = rowsOfEnd("stretch");
    EXPECT_EQ(stretch.luma(0, 0, 16), 255);
    EXPECT_LT(stretch.luma(0, 0, 0), 128);
}

TEST_F(Render, MovesOverStillsWithoutAJump) {
    // A pixel of it is sixteen of the canvas and eight levels.
    ffmpeg("-f lavfi -i color=black:s=32x32,format=gray,geq=lum=8*X -frames:v 1 ramp.png");
    ffmpeg("-f lavfi -i color=white:s=32x32 -frames:v 1 white.png");
    const std::string film =
        "ramp.png +cut white.png fit=contain --size 512x256 --hold 1 --fit cover --fps 30 --motion --seed 1 ";
    render(film + "-o m_%d.png");
    render(film + "--frames 20-20 -o part_%d.png");
    EXPECT_EQ(contents("part_20.png"), contents("m_20.png"));
    const Pictures moved = decode("m_%d.png", 512, 256, "gray", 2);
    const auto step = [&](std::size_t i) { return moved.luma(i + 1, 32, 128) - moved.luma(i, 32, 128); };
    int sum = 0;
    for (std::size_t i = 0; i < 29; ++i) {
        EXPECT_LE(std::abs(step(i)), 1) << i;
        sum += step(i);
    }
    EXPECT_GE(std::abs(sum), 2);
    for (const std::size_t i : {30U, 45U, 59U})  // in its place, to its edges
        EXPECT_EQ(moved.luma(i, 128, 0) + moved.luma(i, 383, 255) - moved.luma(i, 127, 128), 510) << i;
}

TEST_F(Render, PlaysOnWhereAnInputChangesHalfWay) {
    // Recordings one after the other: of another size and another audio, which starts anew or a day later.
    const auto part = [&](const std::string& name, const std::string& size, const std::string& audio,
                          const std::string& later) {
        ffmpeg("-f lavfi -i color=gray:s=" + size + ":r=25:d=1 -f lavfi -i sine=d=1:" + audio +
               " -c:v libx264 -c:a aac -output_ts_offset " + later + " " + name);
    };
    part("first.ts", "64x48", "sample_rate=44100,volume=4", "0");
    part("anew.ts", "32x48", "sample_rate=48000,volume=4,aformat=channel_layouts=stereo", "0");
    part("later.ts", "64x48", "sample_rate=44100,volume=4", "90000");
    shell(in("cat first.ts anew.ts later.ts > all.ts"));
    render("all.ts lavfi:color=gray:s=64x48:d=1 -t 0 --duration 0.2 -o joined.mp4");
    const Pictures joined = decode("joined.mp4", 64, 48);
    EXPECT_NEAR(static_cast<double>(joined.count), 95.0, 4.0);
    EXPECT_GT(joined.luma(10, 4, 24), 100);
    EXPECT_LT(joined.luma(37, 4, 24), 40);  // bars beside the narrow part
    EXPECT_GT(joined.luma(37, 32, 24), 100);
    EXPECT_GT(joined.luma(62, 4, 24), 100);
    const std::vector<double> audio = this->audio("joined.mp4", "-ar 8000");
    for (const double time : {0.5, 1.5, 2.5}) EXPECT_GT(loudness(audio, time), 0.1) << time;
    // Times that go back by two pictures are no new start.
    ffmpeg(
        "-f lavfi -i color=gray:s=64x48:r=25:d=1 -c:v libx264 -bf 0 one.ts -c:v libx264 -bf 0 "
        "-output_ts_offset 0.92 "
        "two.ts");
    shell(in("cat one.ts two.ts > back.ts"));
    EXPECT_NE(vantle("render back.ts back.ts -t 0 --duration 5f --plan").text().find("\n91 frames"),
              std::string::npos);
}

TEST_F(Render, CountsPicturesAndGoesToThemInAnyContainer) {
    countingClip("long.mp4", 70, 90);
    ffmpeg("-i long.mp4 -c:v libx264 -crf 4 -g 20 clip.mp4");
    for (const std::string name : {"clip.mkv", "clip.ts", "clip.h264"})
        ffmpeg("-i clip.mp4 -c copy -bsf:v h264_mp4toannexb " + name);
    // The start is beyond repair: what shows later needs none of it.
    shell(in(
        "cp clip.mp4 torn.mp4; for at in $(ffprobe -v error -select_streams v -show_entries packet=pos -of "
        "csv=p=0 clip.mp4 | sed -n '9,20p' | tr -d ,); do printf junk_and_more_junk | dd of=torn.mp4 bs=1 "
        "seek=$((at)) conv=notrunc status=none; done"));
    for (const std::string name : {"clip.mp4", "clip.mkv", "clip.ts", "clip.h264", "torn.mp4"}) {
        const std::string options = " lavfi:color=black:s=64x320 -t 0 --duration 0.4 --hold 0 -f ";
        if (name != "torn.mp4") {
            render(name + options + "-o all.mkv");
            EXPECT_EQ(probe("all.mkv", "stream=nb_read_frames"), "70") << name;
        }
        const Outcome part = vantle("render " + name + options + "--frames 55-58 -o part_%d.png");
        EXPECT_EQ(part.status, 0) << part.text();
        EXPECT_EQ(part.text().find("damaged"), std::string::npos) << part.text();
        for (std::size_t i = 55; i <= 58; ++i)
            EXPECT_NEAR(decode("part_" + std::to_string(i) + ".png", 64, 320).luma(0, 60, 4), number(i), 1.5)
                << name;
    }
}

TEST_F(Render, PlaysOnPastADamagedPacketButNotPastMany) {
    countingClip("clip.mp4", 50, 90);
    const auto damaged = [&](const std::string& which) {
        shell(
            in("cp clip.mp4 bad.mp4; for at in $(ffprobe -v error -show_entries packet=pos -of csv=p=0 "
               "clip.mp4 | "
               "sed -n '" +
               which +
               "' | tr -d ,); do printf '\\0\\0\\0\\1\\377\\377\\377\\377' | dd of=bad.mp4 bs=1 "
               "seek=$((at)) conv=notrunc status=none; done"));
        return vantle("render bad.mp4 lavfi:testsrc2=s=64x320 -t 0 --duration 0.2 --hold 0 -f -o joined.mkv");
    };
    const Outcome few = damaged("20p;30p;40p");
    EXPECT_EQ(few.status, 0) << few.text();
    EXPECT_NE(few.text().find("vantle: bad.mp4: passed over 3 damaged packets\n"), std::string::npos)
        << few.text();
    EXPECT_EQ(probe("joined.mkv", "stream=nb_read_frames"), "50");
    const Outcome many = damaged("20,29p");
    EXPECT_EQ(many.status, 1);
    EXPECT_NE(many.text().find("packets are damaged\n"), std::string::npos) << many.text();
}

TEST_F(Render, ShowsEveryPictureOnceWhateverTheTimesOfItsFile) {
    // Matroska's times are whole milliseconds, and the first one is what the audio's encoder makes it.
    for (const std::string rate : {"24", "24000/1001", "30", "60"}) {
        ffmpeg("-f lavfi -i \"color=s=64x16:r=" + rate +
               ",format=yuv420p,geq=lum='40+8*N':cb=128:cr=128\" -frames:v 20 -c:v ffv1 clip.nut");
        std::string copies;
        std::string film;
        for (const std::string first : {"0", "7", "17", "21", "33"}) {
            copies += " -c copy -output_ts_offset " + first + "ms " + first + ".mkv";
            film += (film.empty() ? "" : "+cut ") + first + ".mkv ";
        }
        ffmpeg("-i clip.nut" + copies);
        render(film + "-f -o film.mkv --encoder-option crf=4");
        const Pictures pictures = decode("film.mkv", 64, 16);
        ASSERT_EQ(pictures.count, 100U) << rate;
        for (std::size_t i = 0; i < 100; ++i)
            EXPECT_NEAR(pictures.luma(i, 32, 8), 40.0 + 8.0 * static_cast<double>(i % 20), 2)
                << rate << ", " << i;
    }
    // The last packet says that it shows for a 24th of a frame.
    ffmpeg(
        "-f lavfi -i \"color=s=64x16:r=25,format=yuv420p,geq=lum='40+3*N':cb=128:cr=128\" -frames:v 50 -c:v "
        "libx264 -crf 4 -g 25 -video_track_timescale 600 short.mp4");
    for (const std::string options : {" --copy never", " --copy always"}) {
        render("short.mp4 short.mp4 -t 0 --duration 5f -f -o film.mp4" + options);
        const Pictures pictures = decode("film.mp4", 64, 16);
        ASSERT_EQ(pictures.count, 95U) << options;
        EXPECT_NEAR(pictures.luma(94, 32, 8), number(49), 1.5) << options;
    }
    render("short.mp4 +cut short.mp4 --fps 50 -f -o film.mp4");
    EXPECT_EQ(probe("film.mp4", "stream=nb_read_frames"), "200");
    // A camera's clock is a little off.
    ffmpeg("-f lavfi -i color=s=64x16:r=90000/3001:d=1 -c:v libx264 -video_track_timescale 90000 camera.mp4");
    EXPECT_NE(vantle("render camera.mp4 camera.mp4 -t 0 --plan").text().find(", 30 frames per second"),
              std::string::npos);
}

TEST_F(Render, TakesFilesForTruncatedOnlyByTheirOwnIndex) {
    ffmpeg("-f lavfi -i color=s=64x48:r=25:d=9 -f lavfi -i sine=d=9 -c:v libx264 -g 25 -c:a aac clip.mp4");
    ffmpeg(
        "-i clip.mp4 -c copy -movflags +faststart front.mp4 -c copy clip.mkv -c copy clip.flv -c copy "
        "-output_ts_offset 5 late.mp4 -c copy -output_ts_offset 5 late.mkv -c copy -output_ts_offset 5 "
        "late.asf -c copy -movflags "
        "+frag_keyframe+empty_moov live.mp4");
    const auto changed = [&](const std::string& from, const std::string& to, const Bytes& after,
                             const Bytes& wrong) {
        Bytes file = contents(from);
        const auto at = std::search(file.begin(), file.end(), after.begin(), after.end());
        ASSERT_NE(at, file.end());
        std::ranges::copy(wrong, at + std::ssize(after));
        std::ofstream(folder_ / to, std::ios::binary)
            .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
    };
    // Lengths that are not true: of 2600 seconds, in a file of fragments, and of 100 seconds.
    changed("live.mp4", "wrong.mp4", {'m', 'd', 'h', 'd'},
            {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x32, 0, 2, 0, 0, 0});
    changed("clip.mkv", "wrong.mkv", {0x44, 0x89, 0x88}, {0x40, 0xF8, 0x6A, 0, 0, 0, 0, 0});
    for (const std::string name : {"front.mp4", "clip.mkv", "clip.flv"})
        shell(in("head -c $(($(stat -c %s " + name + ") * 4 / 10)) " + name + " > cut_" + name));
    for (const auto& [name, says, status] :
         {std::tuple{"late.mp4", "", 0},
          {"late.mkv", "", 0},
          {"late.asf", "", 0},
          {"wrong.mp4", "", 0},
          {"wrong.mkv", "", 0},
          {"cut_front.mp4", " of 9.00 seconds: the file is truncated or damaged", 1},
          {"cut_clip.mkv", " of 9.02 seconds: the file is truncated or damaged", 1},
          {"cut_clip.flv", "cut_clip.flv: ends after ", 0}}) {
        const Outcome outcome = vantle(std::string("render ") + name +
                                       " lavfi:color=s=64x48 -t 0 --duration 5f --hold 0 -f -o film.mkv");
        EXPECT_EQ(outcome.status, status) << name << outcome.text();
        EXPECT_NE(outcome.text().find(says), std::string::npos) << name << outcome.text();
        if (*says == 0) {
            EXPECT_EQ(probe("film.mkv", "stream=nb_read_frames -select_streams v"), "225") << name;
            EXPECT_EQ(outcome.text().find("ends after"), std::string::npos) << name << outcome.text();
        }
    }
}

TEST_F(Render, SaysWhatCannotBeDecodedAndLeavesOutAudioOfThatKind) {
    ffmpeg("-f lavfi -i color=s=64x48:r=25:d=1 -f lavfi -i sine=d=1 -c:v libx264 -c:a pcm_s16le clip.mov");
    shell(in("sed s/sowt/nvr1/ clip.mov > audio.mov; sed s/avc1/nvr2/g clip.mov > pictures.mov"));
    ffmpeg("-f lavfi -i sine=d=1 -c:a pcm_s16le tone.mov");
    shell(in("sed s/sowt/nvr1/ tone.mov > tone_nvr1.mov"));
    ffmpeg(
        "-i clip.mov -c:v copy -c:a aac -encryption_scheme cenc-aes-ctr -encryption_key "
        "00112233445566778899aabbccddeeff -encryption_kid 00112233445566778899aabbccddeeff secret.mp4");
    std::ofstream(folder_ / "words.srt") << "1\n00:00:00,000 --> 00:00:01,000\nA word\n";
    ffmpeg("-i clip.mov -i words.srt -c copy -c:s mov_text spoken.mov");
    const Outcome silent =
        vantle("render audio.mov spoken.mov -t 0 --duration 5f --copy never -f -o film.mp4");
    EXPECT_EQ(silent.status, 0) << silent.text();
    for (const std::string line : {"audio.mov: FFmpeg has no decoder for its audio (nvr1); it is left out\n",
                                   "spoken.mov: its subtitles are left out\n"})
        EXPECT_NE(silent.text().find(line), std::string::npos) << silent.text();
    EXPECT_EQ(probe("film.mp4", "stream=codec_name,nb_read_frames"), "h264,45\naac,78");
    for (const auto& [operands, says] :
         {std::pair{"pictures.mov clip.mov", "pictures.mov: FFmpeg has no decoder for its pictures (nvr2)\n"},
          {"secret.mp4 clip.mov", "secret.mp4: is encrypted\n"},
          {"clip.mov clip.mov --music tone_nvr1.mov",
           "tone_nvr1.mov: FFmpeg has no decoder for its audio (nvr1)\n"}})
        EXPECT_EQ(vantle(std::string("render -q ") + operands + " -t 0 --duration 5f -f -o none.mp4").text(),
                  std::string("vantle: ") + says);
    EXPECT_FALSE(files().contains("none.mp4"));
}

TEST_F(Render, LetsTheUserControlTheRateOfAVideo) {
    const auto bytes = [&](const std::string& options) {
        render(
            "lavfi:testsrc2=s=320x240:d=1 lavfi:testsrc2=s=320x240 -t 0 --duration 0.2 --hold 0.2 -f -o "
            "a.mp4 " +
            options);
        return contents("a.mp4").size();
    };
    const std::size_t usual = bytes("");
    EXPECT_LT(bytes("--encoder-option b=50k"), usual / 3);
    EXPECT_GT(bytes("--encoder-option qp=0"), usual * 2);
    EXPECT_LT(bytes("--encoder-option crf=1 --encoder-option crf=51"), usual / 3);
}

}  // namespace tests
