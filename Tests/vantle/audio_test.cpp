// How loud films are: gains as numbers, and what is heard of real files.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "timeline/audio_gain.h"
#include "timeline/loudness.h"

namespace tests {

namespace {

using namespace vantle;

/// Three seconds of each of three inputs: a second of overlap, and a cut.
Film threeInputs() {
    Film film;
    film.canvas.rate = {25, 1};
    film.parts = {{0, 0, 75}, {1, 50, 75}, {2, 125, 75}};
    film.parts[1].volume = 0.5;
    film.joins = {{{}, 50, 25}, {{}, 125, 0}};
    return film;
}

}  // namespace

TEST(AudioGain, FadesOverJoinsAndLetsMusicGiveWay) {
    Film film = threeInputs();
    const auto part = [&](std::size_t number, std::int64_t at) {
        return PartGain(film, number, 1000).at(at);
    };
    for (const auto& [curve, before, middle] : {std::tuple{FadeCurve::qsin, 0.2588, 0.7071},
                                                {FadeCurve::tri, 1.0 / 6, 0.5},
                                                {FadeCurve::hsin, 0.067, 0.5},
                                                {FadeCurve::squ, 0.4082, 0.7071},
                                                {FadeCurve::log, 0.8444, 0.9398}}) {
        EXPECT_NEAR(gainAt(curve, 1.0 / 6), before, 1e-4);
        film.fadeCurve = curve;
        EXPECT_NEAR(part(0, 2500), middle, 1e-4);
        EXPECT_NEAR(part(1, 2500), middle / 2, 1e-4);  // of half the volume
        for (const std::int64_t at : {3000, 4999}) EXPECT_EQ(part(1, at), 0.5F) << at;
        EXPECT_EQ(part(0, 3000) + part(1, 2000), 0.0F);
        EXPECT_EQ(part(0, 0) + part(2, 5000) + part(2, 7999), 3.0F);
    }
    // The film's own fades: the first and the last frame are black, and the audio falls to its very end.
    Film fading = film;
    fading.fadeIn = 10;
    fading.fadeOut = 25;
    const FilmGain whole(fading, 1000);
    for (const auto& [at, heard] : {std::pair{0, 0.0}, {100, 0.25}, {400, 1.0}, {6999, 1.0}, {7750, 0.25}})
        EXPECT_NEAR(whole.at(at), heard, 1e-6) << at;
    for (const auto& [frame, light] :
         {std::pair{0.0, 0.0}, {5.0, 0.5}, {10.0, 1.0}, {174.0, 1.0}, {199.0, 0.0}})
        EXPECT_EQ(fading.lightAt(frame), light) << frame;
    EXPECT_EQ(film.lightAt(0) + film.lightAt(199) + FilmGain(film, 1000).at(7999), 3.0);
    // Speech from 3.2 s on with a pause, up to a cut and 0.2 s beyond; a noise; and speech at the very end.
    const auto tenths = [](const std::vector<std::pair<int, double>>& runs) {
        Loudness loudness;
        for (const auto& [count, lufs] : runs)
            loudness.momentary.insert(loudness.momentary.end(), static_cast<std::size_t>(count), lufs);
        return loudness;
    };
    const std::vector<std::optional<Loudness>> heard{std::nullopt,
                                                     tenths({{12, -50}, {6, -25}, {9, -60}, {3, -30}}),
                                                     tenths({{5, -30}, {20, -50}, {5, -41}})};
    film.loud = loudSpans(film, heard);
    EXPECT_EQ(film.loud, (std::vector<LoudSpan>{{3200, 5200}, {7500, 8000}}));
    film.music.volume = 0.8;
    const MusicGain music(film, 1000);
    for (const auto& [at, gain] : {std::pair{0, 0.8},
                                   {2700, 0.8},
                                   {2950, 0.5},
                                   {3200, 0.2},
                                   {5200, 0.2},
                                   {5700, 0.5},
                                   {6000, 0.7427},
                                   {7000, 0.4},
                                   {7999, 0.0}})
        EXPECT_NEAR(music.at(at), gain, 1e-3) << at;
    for (const auto& [lufs, decibels] :
         {std::pair{-23.0, 7.0}, {-10.0, -6.0}, {-16.05, 0.0}, {-60.0, 30.0}, {-70.0, 0.0}})
        EXPECT_NEAR(20 * std::log10(factorToLevel({.integrated = lufs})), decibels, 1e-6) << lufs;
}

class Audio : public CommandTest {
   protected:
    /// Integrated loudness and true peak as FFmpeg's meter has them.
    std::pair<double, double> measured(const std::string& name, const std::string& options) const {
        std::istringstream lines(shell(in("ffmpeg -nostats " + options + " -i " + name +
                                          " -af ebur128=peak=true -f null - 2>&1 | grep -A99 Summary"))
                                     .text());
        std::pair<double, double> found{NAN, NAN};
        for (std::string word; lines >> word;) {
            if (word == "I:") lines >> found.first;
            if (word == "Peak:") lines >> found.second;
        }
        return found;
    }
};

TEST_F(Audio, IsLimitedLevelledAndStaysInPlaceToTheSample) {
    const auto make = [&](const std::string& name, const std::string& audio) {
        ffmpeg("-f lavfi -i color=s=16x16:r=25 -f lavfi -i \"" + audio +
               "\" -t 4 -c:v libx264 -c:a pcm_f32le " + name);
    };
    const auto mix = [&](const std::string& arguments) {
        render(arguments + " -f -o film.mkv --audio-encoder pcm_f32le");
    };
    make("clicks.mkv", "aevalsrc='if(eq(mod(n,9600),0),0.5,0)+0.1*sin(n/9)':s=48000");
    make("louder.mkv", "aevalsrc='if(eq(mod(n,9600),0),2,0)+0.1*sin(n/9)':s=48000");
    make("between.mkv", "aevalsrc='1.3*sin(PI*n/2+PI/4)*lt(mod(n,9000),4000)':s=48000");
    make("around.mkv",
         "aevalsrc=0.8*sin(n/9)|0.8*sin(n/8)|0.8*sin(n/7)|0|0.8*sin(n/6)|0.8*sin(n/5):c=5.1:s=48000");
    // What is quiet enough stays as it is, and nothing moves.
    mix("clicks.mkv +cut clicks.mkv");
    const std::vector<double> clicks = audio("film.mkv");
    const std::vector<double> meant = audio("clicks.mkv");
    ASSERT_EQ(clicks.size(), 2 * meant.size());
    EXPECT_TRUE(std::equal(meant.begin(), meant.end(), clicks.begin()));
    mix("louder.mkv +cut louder.mkv");
    const std::vector<double> limited = audio("film.mkv");
    for (std::size_t at = 0; at < limited.size(); at += 9600) EXPECT_NEAR(limited[at], 0.885, 0.005) << at;
    EXPECT_LT(std::abs(limited[9601]), 0.2);
    ffmpeg("-f lavfi -i sine=d=9,volume=8 song.wav");
    for (const std::string film : {"between.mkv between.mkv", "around.mkv around.mkv --channels 2",
                                   "louder.mkv clicks.mkv --music-duck no --music song.wav"}) {
        mix(film + " -t 0");
        EXPECT_LE(measured("film.mkv", "").second, -0.95) << film;
    }
    // Equally loud, whatever they were, and a volume counts from there.
    make("loud.mkv", "anoisesrc=a=0.9:c=pink:r=48000");
    make("soft.mkv", "sine=f=1000:r=48000,volume=-14dB");
    mix("loud.mkv +cut soft.mkv +cut soft.mkv volume=-6dB --level");
    for (const auto& [from, lufs] : {std::pair{0, -16.0}, {4, -16.0}, {8, -22.0}})
        EXPECT_NEAR(measured("film.mkv", "-ss " + std::to_string(from) + " -t 4").first, lufs, 0.3) << from;
}

}  // namespace tests
