// What a film that was copied together is looked at for: damage done on purpose is found.
#include "copying/verification.h"

#include <algorithm>
#include <array>
#include <utility>

#include "command.h"
#include "copying/copy_film.h"
#include "copying/stretch_encoder.h"
#include "media/annex_b.h"
#include "playing/open_film.h"

namespace tests {

using namespace vantle;

class Verification : public CommandTest {
   protected:
    Verification() {
        av_log_set_level(AV_LOG_QUIET);
        clip("a.mp4", "1", "-bf 0 -preset fast");
        clip("b.mp4", "2", options_);
        FilmRequest request{.meetings = {{"Row_split"}}, .duration = *parseTime("10f")};
        for (const char* const name : {"a.mp4", "b.mp4"})
            request.shots.push_back({(folder_ / name).string()});
        open_.emplace(openFilm(request, PLUGIN_PATH, true));
        plan_ = planCopy(open_->film(), scanSources(*open_), {},
                         [](const CopyPlan& plan) { tryEncoding(plan, {}); });
        for (std::int64_t frame = 0; frame < plan_.film.frames(); ++frame) drawn_[frame].fill(125);
    }

    void clip(const std::string& name, const std::string& seed, const std::string& options) const {
        ffmpeg("-f lavfi -i color=gray:s=96x64:r=25,noise=alls=40:allf=t:all_seed=" + seed +
               " -f lavfi -i sine=r=48000 -t 3 -pix_fmt yuv420p -c:v libx264 -g 20 " + options +
               " -c:a aac " + name);
    }

    /// What is found in `name`, in which the good film became what `command` makes of it.
    std::string fault(const std::string& command, bool everything = false) const {
        EXPECT_EQ(shell(in(command)).status, 0) << command;
        return faultOf((folder_ / "bad.mp4").string(), plan_, drawn_, everything);
    }

    void write(const std::string& ending) const {
        ProgressBar progress(1, true);
        ASSERT_EQ(
            copyFilm(*open_, plan_,
                     {.kind = *movieKind(ending), .name = (folder_ / "good").string() + ending}, progress),
            "");
    }

    void write(const Bytes& film) const {
        std::ofstream(folder_ / "bad.mp4", std::ios::binary)
            .write(reinterpret_cast<const char*>(film.data()), static_cast<std::streamsize>(film.size()));
    }

    std::string filtered(const std::string& filters, bool everything = false) const {
        return fault("ffmpeg -v error -y -i good.mp4 -c copy -copyts -avoid_negative_ts disabled " + filters +
                         " bad.mp4",
                     everything);
    }

    const std::string options_ = "-qp 25 -bf 4 -x264-params b-adapt=0:scenecut=0";
    std::optional<OpenFilm> open_;
    CopyPlan plan_;
    std::map<std::int64_t, Brightness> drawn_;
};

TEST_F(Verification, FindsWhatWasDamagedOnPurpose) {
    ASSERT_EQ(plan_.stretches.size(), 3U);
    ASSERT_EQ(plan_.audioPlan.stretches.size(), 3U);
    write(".mp4");
    EXPECT_EQ(fault("cp good.mp4 bad.mp4", true), "");
    EXPECT_NE(filtered("-bsf:v \"noise=drop=eq(n\\,30)\"").find("number of packets"), std::string::npos);
    EXPECT_NE(filtered("-bsf:a \"noise=drop=eq(n\\,30)\"").find("packet"), std::string::npos);
    EXPECT_NE(filtered("-bsf:v \"setts=pts=PTS+if(eq(N\\,50)\\,1200\\,0)\"").find("no packet has the time"),
              std::string::npos);
    EXPECT_NE(filtered("-bsf:v \"filter_units=remove_types=7|8\""), "");
    // Encoded pictures have parameter sets of their own.
    const Demuxer made((folder_ / "good.mp4").string());
    const AnnexB annexB(NalCodec::h264, made.stream(*made.best(AVMEDIA_TYPE_VIDEO)));
    std::vector<int> identifiers;
    for (const Bytes& set : annexB.header(true))
        identifiers.push_back(pictureParameterSet(set) ? pictureParameterSet(set)->id
                                                       : sequenceParameterSet(NalCodec::h264, set)->id);
    EXPECT_EQ(identifiers, (std::vector<int>{0, 1, 0, 1}));
    // A picture that is decoded when the one before it is: how long these two take is changed in the file.
    filtered("-bsf:v \"setts=dts=DTS-if(eq(N\\,50)\\,1\\,0)\"");
    Bytes film = contents("bad.mp4");
    constexpr auto apart = std::to_array<std::uint8_t>({0, 0, 0, 1, 0, 0, 1, 255, 0, 0, 0, 1, 0, 0, 2, 1});
    constexpr auto together = std::to_array<std::uint8_t>({0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 4, 0});
    const auto found = std::search(film.begin(), film.end(), apart.begin(), apart.end());
    ASSERT_NE(found, film.end());
    std::ranges::copy(together, found);
    write(film);
    EXPECT_NE(fault("true").find("wrong times at packet"), std::string::npos);
    // Two places become one in all sets: as many bits. From mp4 decoders know better.
    write(".mkv");
    EXPECT_EQ(fault("cp good.mkv bad.mp4"), "");
    film = contents("good.mkv");
    int sets = 0;
    for (std::size_t at = 4; at + 64 < film.size(); ++at) {
        const std::size_t length = film[at - 2] * 256U + film[at - 1];
        if (film[at] != 0x67 || film[at + 1] != 100 || film[at + 2] != 0 || length < 8 || length > 60)
            continue;
        const ByteView set(film.data() + at, length);
        const Bytes other = restated(NalCodec::h264, set, 1, set[3]);
        if (other.size() != length) continue;
        std::ranges::copy(other, film.begin() + static_cast<std::ptrdiff_t>(at));
        ++sets;
    }
    EXPECT_GT(sets, 4);
    write(film);
    EXPECT_NE(fault("true").find("frame"), std::string::npos);
    // Another picture far from the seams is seen when all are looked at; what was drawn must show as well.
    EXPECT_EQ(filtered("-bsf:v \"noise=amount=if(eq(n\\,7)\\,3\\,0)\""), "");
    EXPECT_NE(filtered("-bsf:v \"noise=amount=if(eq(n\\,7)\\,3\\,0)\"", true), "");
    EXPECT_EQ(filtered("-bsf:a \"noise=amount=if(eq(n\\,20)\\,3\\,0)\""),
              "another sound is in packet of audio 20");
    EXPECT_NE(filtered("-bsf:a \"noise=drop=eq(n\\," +
                       std::to_string(plan_.audioPlan.stretches.back().end()) + ")\"")
                  .find("number of packets of audio"),
              std::string::npos);
    const std::uint8_t drawn = drawn_.at(70).front();
    drawn_[70].fill(230);
    EXPECT_NE(fault("cp good.mp4 bad.mp4").find("another picture"), std::string::npos);
    drawn_[70].fill(drawn);
    // A clip that was thought to be shorter than it is.
    CodedPictures longer = codedPictures(*open_->inputs[1], {25, 1});
    longer.pictures.push_back({.number = 75, .rank = 75});
    const auto pictures =
        std::exchange(plan_.pictures[1], std::make_shared<const CodedPictures>(std::move(longer)));
    EXPECT_NE(fault("cp good.mp4 bad.mp4").find("b.mp4 is left before its frame 75"), std::string::npos);
    plan_.pictures[1] = pictures;
    // And what is no fault of the coding: other pictures, of another clip, up to the second keyframe
    // behind.
    clip("b.mp4", "2", options_ + " -vf \"drawbox=w=20:h=20:t=fill:enable=gte(n\\,40)\"");
    EXPECT_EQ(fault("cp good.mp4 bad.mp4"), "another picture shows in frame 105");
    clip("a.mp4", "3", "-bf 0 -preset fast");
    EXPECT_EQ(fault("cp good.mp4 bad.mp4"), "another picture shows in frame 0");
}

}  // namespace tests
