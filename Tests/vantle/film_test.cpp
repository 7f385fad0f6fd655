// Films of many inputs: every frame and every sample in its place.
#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <thread>
#include <utility>

#include "command.h"
#include "playing/input.h"

namespace tests {

class Films : public CommandTest {
   protected:
    /// The first sample of a frame, of 30000/1001 and 44100 a second.
    static std::int64_t sampleOf(std::int64_t frame) { return (frame * 44100 * 1001 + 15000) / 30000; }

    /// The loudest of the samples around a moment, 0 to 1.
    static double level(const std::vector<double>& samples, double seconds, double rate = 8000) {
        double loudest = 0.0;
        const auto first = static_cast<std::size_t>(seconds * rate);
        for (std::size_t i = first; i < first + static_cast<std::size_t>(rate / 50); ++i)
            loudest = std::max(loudest, std::abs(samples.at(i)));
        return loudest;
    }

    static std::string times(int count, const std::string& operand) {
        std::string text;
        for (int i = 0; i < count; ++i) (text += operand) += ' ';
        return text;
    }
};

// A hundred joins of a clip whose pictures count and whose audio clicks with its fifth picture.
TEST_F(Films, KeepEveryFrameAndEverySampleInPlaceOverAHundredJoins) {
    ffmpeg(
        "-f lavfi -i \"color=s=64x16:r=30000/1001,format=yuv420p,geq=lum='40+8*N':cb=128:cr=128\" "
        "-f lavfi -i \"aevalsrc='if(eq(n,5880),0.9,0)':s=44100\" -t 0.4004 -c:v libx264 -crf 4 -c:a "
        "pcm_s16le "
        "clip.mkv");
    const std::string film = times(101, "clip.mkv") + "-t Row_split --duration 2f ";
    const nlohmann::json planned = plan(film);
    EXPECT_EQ(planned["frames"], 12 + 100 * 10);
    EXPECT_EQ(planned["timeline"].size(), 201U);
    render(film + "-o film.mkv --audio-encoder pcm_s16le --encoder-option crf=4");
    const Pictures pictures = decode("film.mkv", 64, 16);
    ASSERT_EQ(pictures.count, 1012U);
    for (std::size_t i = 0; i < pictures.count; ++i)
        if (i < 10 || i % 10 > 1) {
            EXPECT_NEAR(pictures.luma(i, 32, 1),
                        40 + 8 * static_cast<int>(i < 12        ? i
                                                  : i % 10 == 0 ? 10
                                                                : i % 10),
                        2)
                << i;
        }
    const std::vector<double> samples = audio("film.mkv");
    EXPECT_EQ(std::ssize(samples), sampleOf(1012));
    for (int i = 0; i < 101; ++i) {
        const auto start = static_cast<std::size_t>(sampleOf(10 * i));
        EXPECT_GT(samples.at(start + 5880), 0.6) << "click " << i;
    }
    EXPECT_EQ(std::ranges::count_if(samples, [](double sample) { return sample > 0.28; }), 101);
    // A part of it is that part of the whole.
    render(film + "-o part.mkv --audio-encoder pcm_s16le --encoder-option crf=4 --frames 707-722");
    const auto first = samples.begin() + sampleOf(707);
    const std::vector<double> part = audio("part.mkv");
    EXPECT_EQ(part.size(), static_cast<std::size_t>(sampleOf(723) - sampleOf(707)));
    EXPECT_TRUE(std::equal(part.begin(), part.end(), first));
    EXPECT_NEAR(decode("part.mkv", 64, 16).luma(1, 32, 1), 40 + 8 * 8, 2);
}

TEST_F(Films, ShowOfEachInputWhatTheOperandsSay) {
    ffmpeg("-f lavfi -i testsrc2=s=64x48:r=25:d=4 -c:v libx264 clip.mp4");
    ffmpeg("-f lavfi -i testsrc2=s=80x48 -frames:v 1 still.png");
    shell(
        in("cp still.png ./+x; cp still.png in=2; cp still.png img2.png; for i in Img1 img002 IMG3 img10; do "
           "cp still.png $i.png; done"));
    const nlohmann::json film = plan(
        "clip.mp4 in=0.5 out=0:03 +Cross_vantle duration=12f still.png hold=1 fit=cover +cut clip.mp4 in=60f "
        "./+x hold=500ms ./in=2 -t 3 -t twrl --duration 0.4 --hold 0.2");
    std::string text;
    for (const nlohmann::json& entry : film["timeline"]) {
        if (entry.contains("input"))
            text += entry["input"]["file"].get<std::string>() + " " + entry["input"]["first"].dump() + "-" +
                    entry["input"]["last"].dump() + "\n";
        else
            text += "  " + entry["join"]["transition"].get<std::string>() + " " +
                    entry["join"]["first"].dump() + "+" + entry["join"]["frames"].dump() + "\n";
    }
    EXPECT_EQ(text,
              "clip.mp4 0-61\n  Cross_vantle 50+12\nstill.png 50-86\n  cut 87+0\nclip.mp4 87-126\n"
              "  Row_split 117+10\n./+x 117-149\n  Twrl 140+10\n./in=2 140-154\n");
    EXPECT_EQ(film["frames"], 155);
    EXPECT_EQ(film["timeline"][0]["input"]["in"], 0.52);
    EXPECT_EQ(film["timeline"][0]["input"]["out"], 3.0);
    const auto names = [&](const std::string& arguments) {
        std::vector<std::string> found;
        const nlohmann::json made = plan(arguments);
        for (const nlohmann::json& entry : made["timeline"])
            if (entry.contains("join")) found.push_back(entry["join"]["transition"]);
        return found;
    };
    const std::string many = times(120, "still.png");
    const std::vector<std::string> random = names(many + "-t random --seed 7");
    EXPECT_EQ(random, names(many + "-t random --seed 7"));
    EXPECT_NE(random, names(many + "-t random --seed 8"));
    EXPECT_EQ(std::ranges::adjacent_find(random), random.end());
    EXPECT_EQ(random.front(), "Col_split_2");  // and so on every machine
    // Nor is one the named one after it.
    const std::vector<std::string> mixed = names(many + "-t random -t Pinwheel -t Row_split --seed 1");
    EXPECT_EQ(std::ranges::adjacent_find(mixed), mixed.end());
    std::string order;
    const nlohmann::json sorted =
        plan("img10.png IMG3.png img002.png img2.png Img1.png -t cut --sort natural");
    for (const nlohmann::json& entry : sorted["timeline"])
        if (entry.contains("input")) order += entry["input"]["file"].get<std::string>() + " ";
    EXPECT_EQ(order, "Img1.png img002.png img2.png IMG3.png img10.png ");
    const std::string table = vantle("render still.png hold=83.25 still.png -t cut --plan").text();
    EXPECT_NE(table.find(" 1:23.27 "), std::string::npos) << table;

    // A true cut: one frame shows the one input, the next the other.
    render("clip.mp4 out=10f +cut still.png -o f_%d.png --hold 0.2 --fit cover");
    EXPECT_EQ(files().contains("f_14.png"), true);
    EXPECT_FALSE(files().contains("f_15.png"));
    render("still.png +cut still.png -o s_%d.png --size 64x48 --hold 0.2 --fit cover");
    EXPECT_EQ(rgb("f_10.png"), rgb("s_0.png"));
    EXPECT_NE(rgb("f_9.png"), rgb("s_0.png"));
}

TEST_F(Films, SayHowInputsLieInThemAndWhatTheyTake) {
    ffmpeg("-f lavfi -i testsrc2=s=80x48 -frames:v 1 still.png");
    const std::string frame = "still.png hold=1f --size 640x64 +cut still.png hold=0 fit=cover -o a.mp4";
    const nlohmann::json film = plan(frame);
    EXPECT_EQ(film["timeline"][0]["input"]["bars"], "left and right");
    EXPECT_EQ(film["timeline"][2]["input"]["cutOff"], "top and bottom");
    EXPECT_EQ(film["timeline"][2]["input"]["scale"], 8.0);
    const std::string words = vantle("render --plan " + frame).text();
    for (const char* const says :
         {"(still), enlarged 8 times, top and bottom cut off\n", "\n2 frames, ", "\nEstimate, "})
        EXPECT_NE(words.find(says), std::string::npos) << words;
    const std::string moving = "lavfi:testsrc2=s=320x180:d=4 lavfi:testsrc2=s=320x180:d=4 -t 0 -o size.mp4";
    const double estimated = plan(moving)["estimate"]["bytes"];
    render(moving);
    EXPECT_NEAR(estimated / static_cast<double>(fs::file_size(folder_ / "size.mp4")), 1.0, 0.5);
    EXPECT_FALSE(plan("still.png still.png -t 0 -o f_%d.png").contains("estimate"));
}

TEST_F(Films, ShowTheJoinThatIsAskedFor) {
    for (const std::string colour : {"red", "lime", "blue"})
        ffmpeg("-f lavfi -i color=" + colour + ":s=64x48,format=rgb24 -frames:v 1 " + colour + ".png");
    // Which of the three colours a picture shows.
    const auto colours = [&](const std::string& name) {
        const Bytes pixels = rgb(name);
        std::set<std::size_t> found;
        for (std::size_t i = 0; i + 2 < pixels.size(); i += 3)
            for (std::size_t colour = 0; colour < 3; ++colour)
                if (pixels[i + colour] > 200 && pixels[i + (colour + 1) % 3] < 60 &&
                    pixels[i + (colour + 2) % 3] < 60)
                    found.insert(colour);
        return found;
    };
    const std::set<std::size_t> second{1, 2};
    render("red.png +3 lime.png +3 blue.png --at 2:0.5 -o at.png");
    EXPECT_EQ(colours("at.png"), second);
    render("red.png +cut lime.png +3 blue.png +cut red.png --joins joins.png");
    EXPECT_EQ(colours("joins.png"), second);
    for (const auto& [fade, middle] : {std::pair<std::string, Bytes>{"fade", {128, 0, 128}},
                                       {"fade-black", {0, 0, 0}},
                                       {"fade-white", {255, 255, 255}}}) {
        for (const std::string at : {"0", "0.5", "1"})
            render("red.png +" + fade + " blue.png --at " + at + " -o " + fade + at + ".png");
        Bytes pixels = rgb(fade + "0.5.png");
        pixels.resize(3);
        EXPECT_EQ(pixels, middle) << fade;
        EXPECT_EQ(rgb(fade + "0.png"), rgb("red.png"));
        EXPECT_EQ(rgb(fade + "1.png"), rgb("blue.png"));
    }
    // One of the transitions that end on FROM: what shows there is its last picture of the overlap.
    countingClip("clip.mp4", 25, 90);
    const std::string end = "clip.mp4 out=10f clip.mp4 -t 10 --duration 4f -o ";
    render(end + "end.png --at 1");
    render(end + "f_%d.png --frames 10-10");
    EXPECT_EQ(rgb("end.png"), rgb("f_10.png"));
}

TEST_F(Films, AreNotWrittenWhenAnInputGoesAwayWhileOthersAreShown) {
    ffmpeg("-f lavfi -i testsrc2=s=64x48:r=25:d=2 -c:v libx264 clip.mp4");
    shell(in("cp clip.mp4 lost.mp4"));
    const Outcome lost =
        vantleWhile("render -q lavfi:testsrc2=s=640x360:d=30 clip.mp4 lost.mp4 -t 0 -o a.mp4", "rm lost.mp4");
    EXPECT_EQ(lost.status, 1);
    EXPECT_EQ(lost.text(), "vantle: lost.mp4: No such file or directory\n");
    EXPECT_EQ(files(), std::set<std::string>{"clip.mp4"});
}

TEST_F(Films, MixAudioAndMusicAsAsked) {
    ffmpeg(
        "-f lavfi -i color=s=16x16:r=25:d=3 -f lavfi -i sine=f=400:d=3,volume=4 -c:v libx264 -c:a aac "
        "loud.mp4");
    ffmpeg("-f lavfi -i color=s=16x16:r=25:d=3 -c:v libx264 mute.mp4");
    ffmpeg("-f lavfi -i sine=f=1000:d=1.7,volume=4 music.wav");
    const auto levels = [&](const std::string& arguments) {
        render(arguments + " -f -o film.mkv --audio-encoder pcm_s16le");
        return audio("film.mkv", "-ar 8000");
    };
    // 0 to 3 s silent, 2 to 5 s loud, 5 to 8 s silent after a cut.
    const std::string film = "mute.mp4 loud.mp4 +cut mute.mp4 -t 0 --audio-curve tri";
    const auto own = levels(film);
    const double full = level(own, 4);
    EXPECT_GT(full, 0.3);
    EXPECT_EQ(level(own, 1.9), 0.0);
    EXPECT_NEAR(level(own, 2.5), full / 2, 0.05);
    EXPECT_NEAR(level(own, 4.9), full, 0.05);
    EXPECT_EQ(level(own, 5.01), 0.0);
    const auto both = levels(film + " --music music.wav --music-volume 0.5 --music-duck no");
    EXPECT_NEAR(level(both, 1.5), full / 2, 0.03);
    EXPECT_NEAR(level(both, 1.75), full / 2, 0.03);  // begun anew
    EXPECT_NEAR(level(both, 4), full * 1.5, 0.05);
    EXPECT_NEAR(level(both, 7), full / 4, 0.03);  // fading out
    EXPECT_LT(level(both, 7.95), 0.02);
    const auto ducked = levels(film + " --music music.wav");
    EXPECT_NEAR(level(ducked, 1), full, 0.03);
    EXPECT_NEAR(level(ducked, 3.5), full * 1.25, 0.05);
    EXPECT_NEAR(level(ducked, 1.75), full * 0.625, 0.05);  // half way down, and up again
    EXPECT_NEAR(level(ducked, 5.5), full * 0.625, 0.05);
    ffmpeg("-f lavfi -i \"aevalsrc='0.2*t*sin(6283*t)'\" -t 4 rising.wav");
    EXPECT_NEAR(level(levels(film + " --mute --music rising.wav --frames 50-74"), 0.5), 0.34, 0.03);
    EXPECT_LT(level(levels(film + " --mute --music music.wav --music-volume 0.1"), 4), full / 8);
    // What stands behind the music is the music's: here from 1 s to 2 s of it, again and again.
    const auto cut =
        levels("mute.mp4 --music rising.wav in=1 out=2 --music-duck no volume=0.5 loud.mp4 volume=-6dB -t 0");
    for (const auto& [time, loud] : {std::pair{0.05, 0.105}, {0.95, 0.19}, {1.05, 0.105}})
        EXPECT_NEAR(level(cut, time), loud, 0.015) << time;
    EXPECT_NEAR(level(cut, 3.5), full / 2 + 0.11, 0.03);
    EXPECT_EQ(level(levels("loud.mp4 mute=yes +cut loud.mp4"), 1), 0.0);
    // Audio that is in the film's form already, its times in those of the container.
    ffmpeg("-i loud.mp4 -c copy loud.mkv");
    EXPECT_NEAR(level(levels("loud.mkv +cut loud.mkv"), 2.9), full, 0.05);

    // Beside a clip that is copied, audio is read on its own: it stays in its place after a long pause.
    ffmpeg(
        "-f lavfi -i color=s=16x16:r=25:d=16 -f lavfi -i "
        "\"sine=f=400:d=16,volume=4,aselect='lt(t,2)+gt(t,14)'\" "
        "-c:v libx264 -c:a aac pause.ts");
    render("loud.mp4 pause.ts -t 0 --duration 0.4 -f -o film.mp4");
    const auto paused = audio("film.mp4", "-ar 8000");
    for (const auto& [time, loud] : {std::pair{4.5, 1.0}, {4.8, 0.0}, {16.5, 0.0}, {17, 1.0}})
        EXPECT_NEAR(level(paused, time), loud * full, 0.06) << time;

    ffmpeg("-i mute.mp4 -f lavfi -i anullsrc=cl=5.1:d=3 -c:v copy -c:a ac3 around.mkv");
    const auto channels = [&](const std::string& arguments) {
        render(arguments + " -t 0 -f -o film.mkv");
        return probe("film.mkv", "stream=channels -select_streams a");
    };
    EXPECT_EQ(channels("around.mkv mute.mp4 around.mkv"), "6");
    EXPECT_EQ(channels("around.mkv loud.mp4"), "2");
    EXPECT_EQ(channels("loud.mp4 loud.mp4"), "1");
}

TEST_F(Films, AreWrittenByOtherEncodersAndIntoPipes) {
    const std::string film =
        "lavfi:testsrc2=s=64x48:d=1 lavfi:smptebars=s=64x48 -t 0 --duration 0.2 --hold 0.2 ";
    for (const auto& [options, says] :
         {std::pair{"-o a.mkv --encoder ffv1 --audio-encoder flac", "ffv1,yuv420p"},
          {"-o a.mov --encoder prores_ks", "prores,yuv422p10le"},
          {"-o a.mp4 --encoder mpeg4 --encoder-option b=300k", "mpeg4,yuv420p"},
          {"-o a.mov --encoder qtrle --size 63x47", "qtrle,rgb24"}}) {
        render(film + "-f " + options);
        const std::string name = std::string(options).substr(3, 5);
        EXPECT_EQ(probe(name, "stream=codec_name,pix_fmt,nb_read_frames"), std::string(says) + ",30")
            << options;
    }
    EXPECT_EQ(shell(in(VANTLE " render -q " + film +
                       "-o - | ffprobe -v error -count_frames -show_entries "
                       "stream=codec_name,nb_read_frames -of csv=p=0 -"))
                  .text(),
              "h264,30\n");
    const Outcome unread =
        shell(in("{ " VANTLE " render -q lavfi:testsrc2=d=9 lavfi:testsrc2 -t 0 -o - 2>&3 | head -c 9; } "
                 "3>&1 >/dev/null"));
    EXPECT_EQ(unread.text(), "vantle: cannot write standard output: Broken pipe\n");
    render(film + "lavfi:testsrc2=s=64x48 -t Twrl -t 3 --joins joins.png");
    EXPECT_EQ(files(), (std::set<std::string>{"a.mkv", "a.mov", "a.mp4", "joins.png"}));
}

TEST_F(Films, TakeNoMoreMemoryForMoreInputsOrLongerOnes) {
    ffmpeg("-f lavfi -i testsrc2=s=640x360:r=25:d=0.6 -f lavfi -i sine=d=0.6 -c:v libx264 -c:a aac clip.mp4");
    const auto peak = [&](const std::string& arguments) {
        const std::string text =
            shell(
                in("python3 -c \"import resource, subprocess, sys; subprocess.run(sys.argv[1:], check=True); "
                   "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)\" " VANTLE
                   " render -q -f " +
                   arguments))
                .text();
        return std::stod(text);
    };
    const std::string joined =
        "-t random --seed 3 --duration 0.2 -o film.mkv --encoder-option preset=ultrafast";
    const double few = peak(times(4, "clip.mp4") + joined);
    EXPECT_LT(peak(times(60, "clip.mp4") + joined), 1.3 * few);
    // Nine minutes without audio, in which 190 MB of pictures lie: neither waits in memory.
    ffmpeg(
        "-f lavfi -i color=gray:s=640x360:r=1:d=550 -f lavfi -i \"sine=f=400:r=48000:d=550,volume=4,"
        "aselect='lt(t,5)+gt(t,545)'\" -pix_fmt yuv420p -c:v rawvideo -c:a pcm_s16le gap.mkv");
    EXPECT_LT(peak("gap.mkv lavfi:color=gray:s=64x36:r=1 -t 0 --duration 1f --hold 0 --size 64x36 -o "
                   "film.mkv --encoder "
                   "mpeg4 --audio-encoder pcm_s16le"),
              1.3 * few);
    const auto heard = audio("film.mkv", "-ar 8000");
    EXPECT_EQ(std::ssize(heard), 550 * 8000);
    for (const auto& [time, loud] :
         {std::pair{4.9, true}, {5.02, false}, {300.0, false}, {544.9, false}, {545.1, true}})
        EXPECT_EQ(level(heard, time) > 0.2, loud) << time;
}

// Many inputs are opened side by side.
TEST_F(Films, OpenTheirInputsWithOneThreadEach) {
    countingClip("clip.mp4", 20, 128);
    const auto threads = [] { return std::distance(fs::directory_iterator("/proc/self/task"), {}); };
    const auto before = threads();
    vantle::Input input((folder_ / "clip.mp4").string());
    EXPECT_EQ(input.source().frames({25, 1}), 20);
    EXPECT_EQ(threads(), before);
    input.start(0, {25, 1}, false);  // to be shown, with as many as there are cores
    EXPECT_EQ(threads() > before, std::thread::hardware_concurrency() > 1);
}

}  // namespace tests
