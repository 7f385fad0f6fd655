// What a film that was copied together is looked at for: damage done on purpose is found.
#include "copying/verification.h"

#include "command.h"
#include "copying/copy_film.h"
#include "timeline/lay_out.h"

namespace tests {

using namespace vantle;

class Verification : public CommandTest {
   protected:
    Verification() {
        av_log_set_level(AV_LOG_QUIET);
        clip("a.mp4", "1", "-bf 0 -preset fast");
        clip("b.mp4", "2", "-bf 4 -x264-params b-adapt=0:scenecut=0");
        Sequence sequence;
        for (const char* const name : {"a.mp4", "b.mp4"})
            sequence.shots.push_back({(folder_ / name).string()});
        sequence.meetings.push_back({"Row_split"});
        inputs_ = openInputs(sequence, true);
        std::vector<std::string> notes;
        plan_ = planCopy(layOut(sequence, inputs_, transitionsFor(sequence, plugin_, 0), {{96, 64}, {25, 1}},
                                {.duration = {10, true}}, notes),
                         {SoundWish{48000, 1}});
        for (std::int64_t frame = 0; frame < plan_.film.frames(); ++frame) drawn_[frame].fill(0.49F);
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
        ASSERT_EQ(copyFilm(plan_,
                           {.kind = *movieKind(ending),
                            .name = (folder_ / "good").string() + ending,
                            .sound = SoundWish{48000, 1}},
                           progress),
                  "");
    }

    std::string filtered(const std::string& filters, bool everything = false) const {
        return fault("ffmpeg -v error -y -i good.mp4 -c copy -copyts -avoid_negative_ts disabled " + filters +
                         " bad.mp4",
                     everything);
    }

    Plugin plugin_{PLUGIN_PATH};
    std::vector<std::unique_ptr<Input>> inputs_;
    CopyPlan plan_;
    std::map<std::int64_t, Brightness> drawn_;
};

TEST_F(Verification, FindsWhatWasDamagedOnPurpose) {
    ASSERT_EQ(plan_.stretches.size(), 3U);
    ASSERT_EQ(plan_.soundStretches.size(), 3U);
    write(".mp4");
    EXPECT_EQ(fault("cp good.mp4 bad.mp4", true), "");
    EXPECT_NE(filtered("-bsf:v \"noise=drop=eq(n\\,30)\"").find("number of packets"), std::string::npos);
    EXPECT_NE(filtered("-bsf:a \"noise=drop=eq(n\\,30)\"").find("packet"), std::string::npos);
    EXPECT_NE(filtered("-bsf:v \"setts=pts=PTS+if(eq(N\\,50)\\,1200\\,0)\"").find("no packet has the time"),
              std::string::npos);
    EXPECT_NE(filtered("-bsf:v \"filter_units=remove_types=7|8\""), "");
    // Two places become one in all sets: as many bits. From mp4 decoders know better.
    write(".mkv");
    EXPECT_EQ(fault("cp good.mkv bad.mp4"), "");
    Bytes film = contents("good.mkv");
    int sets = 0;
    for (std::size_t at = 4; at + 64 < film.size(); ++at) {
        const std::size_t length = film[at - 2] * 256U + film[at - 1];
        if (film[at] != 0x67 || film[at + 1] != 100 || film[at + 2] != 0 || length < 8 || length > 60)
            continue;
        const ByteView set(film.data() + at, length);
        const Bytes other = restated(NalCoding::h264, set, 1, set[3]);
        if (other.size() != length) continue;
        std::ranges::copy(other, film.begin() + static_cast<std::ptrdiff_t>(at));
        ++sets;
    }
    EXPECT_GT(sets, 4);
    std::ofstream(folder_ / "bad.mp4", std::ios::binary)
        .write(reinterpret_cast<const char*>(film.data()), static_cast<std::streamsize>(film.size()));
    EXPECT_NE(fault("true").find("frame"), std::string::npos);
    // Another picture far from the seams is seen when all are looked at; what was drawn must show as well.
    EXPECT_EQ(filtered("-bsf:v \"noise=amount=if(eq(n\\,7)\\,3\\,0)\""), "");
    EXPECT_NE(filtered("-bsf:v \"noise=amount=if(eq(n\\,7)\\,3\\,0)\"", true), "");
    EXPECT_NE(filtered("-bsf:a \"noise=drop=gte(n\\,250)\"").find("number of packets of sound"),
              std::string::npos);
    const float drawn = drawn_.at(70).front();
    drawn_[70].fill(0.9F);
    EXPECT_NE(fault("cp good.mp4 bad.mp4").find("another picture"), std::string::npos);
    drawn_[70].fill(drawn);
    // And what is no fault of the coding: other pictures, of another clip.
    clip("a.mp4", "3", "-bf 0 -preset fast");
    EXPECT_NE(fault("cp good.mp4 bad.mp4").find("another picture"), std::string::npos);
}

}  // namespace tests
