// What of a film is copied, laid out from descriptions of its sources alone. No file is opened here.
#include "copying/copy_plan.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace tests {

namespace {

using namespace vantle;

/// A source of a hundred pictures, 25 a second, and what of it is coded: a keyframe every `interval`, between
/// them all others in order or, with `reordered`, each third before the two that show before it.
CodedSource coded(std::int64_t interval, bool reordered = false, int width = 640) {
    auto pictures = std::make_shared<CodedPictures>(CodedPictures{
        .stream = 0,
        .codec = NalCodec::h264,
        .parameters = av::Parameters(avcodec_parameters_alloc()),
        .parameterSets = {},
        .headerSei = {},
        .timeBase = {1, 25},
        .pictures = {},
    });
    pictures->parameters->width = width;
    pictures->parameters->height = 360;
    const auto add = [&](std::int64_t number) {
        if (number < 100)
            pictures->pictures.push_back({number, number, number + 1, number, number % interval == 0});
    };
    for (std::int64_t key = 0; key < 100; key += interval) {
        add(key);
        for (std::int64_t i = 1; i < interval; i += reordered ? 3 : 1) {
            if (reordered) add(key + i + 2);
            add(key + i);
            if (reordered) add(key + i + 1);
        }
    }
    return {.pictures = pictures, .refusal = {}, .audio = {}};
}

/// Parts of a hundred frames each that overlap by ten.
Film film(std::size_t parts, AVRational rate = {25, 1}) {
    Film film{.canvas = {{640, 360}, rate}};
    for (std::size_t i = 0; i < parts; ++i) {
        film.sources.push_back(
            {.name = std::string(1, static_cast<char>('a' + i)), .size = {640, 360}, .rate = rate});
        film.parts.push_back({.source = i, .start = static_cast<std::int64_t>(90 * i), .frames = 100});
        if (i > 0) film.joins.push_back({TransitionName{}, static_cast<std::int64_t>(90 * i), 10});
    }
    return film;
}

/// As "a 0+90, seam 90+25, b 115+75", then what is not copied and why.
std::string text(const CopyPlan& plan) {
    std::string all;
    for (const Stretch& stretch : plan.stretches)
        all += (stretch.part     ? plan.film.sources[*stretch.part].name
                : stretch.isSeam ? "seam"
                                 : "encoded") +
               " " + std::to_string(stretch.first) + "+" + std::to_string(stretch.frames) + ", ";
    for (const std::string& why : plan.why)
        if (!why.empty()) all += why.substr(0, why.find(';')) + ", ";
    return all;
}

}  // namespace

TEST(CopyPlan, CopiesWhatCanBeDecodedOnItsOwn) {
    const auto plan = [](const std::vector<CodedSource>& sources) {
        return text(planCopy(film(sources.size()), sources, {}, [](const CopyPlan&) {}));
    };
    EXPECT_EQ(plan({coded(25), coded(25)}), "a 0+90, seam 90+25, b 115+75, ");
    // What shows before the join may be decoded after a picture in it.
    EXPECT_EQ(plan({coded(25, true), coded(25, true)}), "a 0+88, seam 88+27, b 115+75, ");
    EXPECT_EQ(plan({coded(25), coded(10), coded(11)}),
              "a 0+90, seam 90+10, b 100+80, seam 180+11, c 191+89, ");
    EXPECT_EQ(plan({coded(25), coded(200)}),
              "a 0+90, encoded 90+100, b: has no keyframe in its frames 10 to 99, with which copying could "
              "begin, ");
    EXPECT_EQ(plan({coded(25), coded(25, false, 320), coded(25)}),
              "a 0+90, encoded 90+115, c 205+75, b: its pixels are not shaped as those of a, ");
    CodedSource other = coded(25);
    std::const_pointer_cast<CodedPictures>(other.pictures)->parameters->format = AV_PIX_FMT_YUV444P;
    EXPECT_EQ(plan({other, coded(25)}), "a 0+90, encoded 90+100, b: its pixel format is not that of a, ");
    // The film's own fades are encoded, within joins too.
    Film fading = film(2);
    fading.fadeIn = 30;
    fading.fadeOut = 105;
    EXPECT_EQ(text(planCopy(fading, {coded(25), coded(25)}, {}, [](const CopyPlan&) {})),
              "seam 0+50, a 50+35, encoded 85+105, ");
    // What is faster than the film is left out, unless it is uneven and hardly faster.
    for (const auto& [rate, even, copies] : {std::tuple{AVRational{25001, 1000}, true, false},
                                             {{25001, 1000}, false, true},
                                             {{26, 1}, false, false}}) {
        CodedSource own = coded(25);
        std::const_pointer_cast<CodedPictures>(own.pictures)->even = even;
        Film mixed = film(2);
        mixed.sources[1].rate = rate;
        EXPECT_EQ(planCopy(mixed, {coded(25), own}, {}, [](const CopyPlan&) {}).copiedOf(1) > 0, copies)
            << rate.num;
    }
    // Where the first cannot be joined by what is encoded, others may.
    const auto tryEncoding = [](const CopyPlan& tried) {
        if (tried.pictures[0]) throw NotCopied("a: joins cannot be encoded like it");
    };
    EXPECT_EQ(text(planCopy(film(2), {other, coded(25)}, {}, tryEncoding)),
              "encoded 0+115, b 115+75, a: joins cannot be encoded like it, ");
}

TEST(ShownPictures, KeepTheirTimesBetweenFramesOfTheFilm) {
    // A hundred frames in thousandths; of the second part 50 to 52 are missing, 60 comes late and 61 early.
    CodedSource uneven = coded(25);
    CodedPictures& pictures = *std::const_pointer_cast<CodedPictures>(uneven.pictures);
    pictures.even = false;
    pictures.timeBase = {1, 1000};
    pictures.start = 7;
    std::erase_if(pictures.pictures,
                  [](const CodedPicture& picture) { return picture.number >= 50 && picture.number < 53; });
    for (std::size_t i = 0; CodedPicture & picture : pictures.pictures) {
        picture.time = 40 * picture.number + 7 + (picture.number == 60 ? 13 : picture.number == 61 ? -11 : 0);
        picture.rank = static_cast<std::int64_t>(i++);
        if (picture.number == 49) picture.end = 53;
    }
    Film made = film(2);
    made.parts[1].first = 3;  // from its frame 3 on
    made.parts[1].frames = 97;
    const CopyPlan plan = planCopy(made, {coded(25), uneven}, {}, [](const CopyPlan&) {});
    EXPECT_EQ(text(plan), "a 0+90, seam 90+22, b 112+75, ");
    const ShownPictures& shown = plan.shown;
    EXPECT_EQ(shown.timeBase.den, 1000);
    ASSERT_EQ(shown.first, (std::vector<std::int64_t>{0, 90, 112}));
    ASSERT_EQ(shown.pictures.size(), 184U);
    const auto timeOf = [&](std::int64_t number) {  // of a picture of the second part
        const std::optional<std::int64_t> place = shown.find(2, pictures.pictures[0].time + 40 * number);
        return place ? shown.at(*place).time : -1;
    };
    EXPECT_EQ(timeOf(25), 40 * 112);
    EXPECT_EQ(timeOf(49), 40 * 136);
    EXPECT_EQ(timeOf(50), -1);
    EXPECT_EQ(timeOf(53), 40 * 140);
    EXPECT_EQ(shown.at(shown.find(2, 40 * 60 + 20).value()).time, 40 * 147 + 13);
    EXPECT_EQ(shown.at(shown.find(2, 40 * 61 - 4).value()).time, 40 * 148 - 11);
    EXPECT_EQ(shown.end, 40 * 187);
}

TEST(AudioPlan, CopiesWhatIsHeardAloneInStepWithItsPictures) {
    constexpr std::int64_t frame = CodedAudio::frameSamples;
    for (const AVRational rate : {AVRational{25, 1}, AVRational{30000, 1001}, AVRational{50, 1}})
        for (const int sampleRate : {44100, 48000})
            for (const std::int64_t first : {-2112, -1024, 0, 333, 5000}) {
                SCOPED_TRACE(std::to_string(rate.num) + " " + std::to_string(sampleRate) + " " +
                             std::to_string(first));
                Film made = film(4, rate);
                made.audio = {sampleRate, 2};
                if (first == 333) made.fadeIn = made.fadeOut = 20;
                const auto sample = [&](std::int64_t at) { return sampleOf(at, rate, sampleRate); };
                std::vector<std::shared_ptr<const CodedAudio>> audio;
                for (std::size_t i = 0; i < 4; ++i)
                    audio.push_back(std::make_shared<CodedAudio>(CodedAudio{
                        .stream = 1, .parameters = {}, .first = first, .packets = sample(100) / frame + 2}));
                audio[2] = nullptr;
                const AudioPlan plan = planAudio(made, audio);
                std::int64_t next = -1;
                std::int64_t copied = 0;
                for (const AudioStretch& stretch : plan.stretches) {
                    ASSERT_EQ(stretch.first, next);
                    next = stretch.end();
                    if (!stretch.part) continue;
                    copied += stretch.aacFrames;
                    const Part& part = made.parts[*stretch.part];
                    ASSERT_NE(*stretch.part, 2U);
                    // Where what is copied should lie, and how far it is from there.
                    const std::int64_t meant = sample(part.start) + first + stretch.source * frame;
                    EXPECT_LE(std::abs(stretch.first * frame - meant), frame / 2);
                    EXPECT_EQ(stretch.first * frame - meant, plan.delays[*stretch.part]);
                    EXPECT_GE(stretch.source, 0);
                    EXPECT_LE(stretch.source + stretch.aacFrames, audio[*stretch.part]->packets);
                    // No copied AAC frame reaches into a join, over which it fades, or into the film's fades.
                    EXPECT_TRUE(made.fadeIn == 0 || stretch.first * frame >= sample(20));
                    EXPECT_TRUE(made.fadeOut == 0 ||
                                (stretch.end() + 1) * frame <= sample(made.frames() - 20));
                    EXPECT_TRUE(*stretch.part == 3 || (stretch.end() + 1) * frame <= sample(part.end() - 10));
                    EXPECT_TRUE(*stretch.part == 0 || stretch.first * frame >= sample(part.start + 10));
                }
                EXPECT_GE(next * frame, sample(made.frames()) - sampleRate / 1000);
                EXPECT_GT(copied * 3, next);
            }
}

}  // namespace tests
