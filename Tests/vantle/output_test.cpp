// What a person has: files under an output's name, inputs, what a killed rendering leaves.
#include "command.h"

namespace tests {

class Outputs : public CommandTest {
   protected:
    const std::string film_ =
        "render -q lavfi:testsrc2=s=16x16:d=0.2 lavfi:testsrc2=s=16x16 -t 0 --duration 0.1 ";
};

TEST_F(Outputs, AreNeverAnInputWhateverItIsCalled) {
    ffmpeg("-f lavfi -i testsrc2=s=32x32:d=0.4 -f lavfi -i sine=d=0.4 -c:a aac a.mp4");
    ffmpeg("-f lavfi -i testsrc2=s=32x32:d=0.4 i_%02d.png");
    ffmpeg("-i a.mp4 -c copy -f hls p.m3u8");
    shell(
        in("cp a.mp4 b.mp4; cp a.mp4 m.mp4; ln a.mp4 hard.mp4; ln p0.ts stream.mp4; mkdir sub page;"
           " for f in inner.ffconcat sub/c.mp4; do printf \"ffconcat version 1.0\\nfile '$f'\\n\"; done |"
           " split -l 2 --filter 'cat >$FILE.ffconcat' - x; mv xaa.ffconcat o.ffconcat;"
           " mv xab.ffconcat inner.ffconcat; cp a.mp4 sub/c.mp4; cp i_01.png page"));
    const std::string sums = "find . -type f -exec sha256sum {} + | sort";
    const Outcome before = shell(in(sums));
    for (const auto& [arguments, spared] : {
             std::pair{"render file:a.mp4 b.mp4 -o a.mp4", "a.mp4"},
             {"render a.mp4 b.mp4 -o hard.mp4", "hard.mp4"},
             {"render 'concat:b.mp4|a.mp4' b.mp4 -o a.mp4", "a.mp4"},
             {"render lavfi:movie=a.mp4 b.mp4 -o a.mp4", "a.mp4"},
             {"render lavfi:color=s=32x32:d=1,removelogo=i_02.png b.mp4 --at 0 -o i_02.png", "i_02.png"},
             {"render o.ffconcat b.mp4 -o sub/c.mp4", "sub/c.mp4"},
             {"render p.m3u8 b.mp4 -o stream.mp4", "stream.mp4"},
             {"render a.mp4 b.mp4 --music file:m.mp4 -o m.mp4", "m.mp4"},
             {"render i_%02d.png b.mp4 -o i_%02d.png", "i_01.png"},
             {"render i_%02d.png b.mp4 --at 0.5 -o i_03.png", "i_03.png"},
             {"render i_%02d.png b.mp4 --joins i_10.png", "i_10.png"},
             {"render 'i_%*.png' b.mp4 --at 0.5 -o i_07.png", "i_07.png"},
             {"sheet i_%02d.png b.mp4 -o i_05.png", "i_05.png"},
         })
        refuses(std::string(arguments) + " -q -t 0 --duration 1f --force", 1,
                spared + std::string(" is an input"));
    EXPECT_EQ(shell(in(sums)).text(), before.text());
    // A gallery is replaced, but not while one is made of it.
    const std::string gallery =
        "gallery -q b.mp4 lavfi:testsrc2=s=32x32 --positions 2 -t 0 --duration 1f -o g";
    ASSERT_EQ(vantle(gallery).status, 0);
    refuses("gallery -q g/frames/00.webp b.mp4 --duration 1f --force -o g", 1,
            "g/frames/00.webp is an input");
}

TEST_F(Outputs, AreRefusedAtTheStartWhenTheyWouldBeAtTheEnd) {
    // Nothing of these is read: none.mp4 is not found first.
    const std::string film = "render -q none.mp4 none.mp4 -t 0 --force -o ";
    refuses(film + std::string(252, 'x') + ".mp4", 1, "File name too long");
    refuses("gallery -q none.mp4 none.mp4 -o " + std::string(256, 'x'), 1, "File name too long");
    // In a folder where everybody replaces only what is his own, as somebody else.
    shell(in("chmod 755 .; mkdir sticky; touch sticky/a.mp4; chmod 1777 sticky"));
    const std::string other = "setpriv --reuid 1 --regid 1 --clear-groups ";
    if (shell(in(other + VANTLE " --version")).status == 0) {
        const Outcome outcome = shell(in(other + VANTLE " " + film + "sticky/a.mp4 2>&1"));
        EXPECT_EQ(outcome.text(), "vantle: cannot write sticky/a.mp4: Operation not permitted\n");
    }
    // Of numbered pictures the last is in the way.
    shell(in("echo mine >f_4.png"));
    refuses(film_ + "-o f_%d.png", 1, "f_4.png exists");
    EXPECT_EQ(files(), (std::set<std::string>{"f_4.png", "sticky"}));
    const Outcome late =
        shell(in("BEFORE='echo mine >film.gif'" + withRenamesHooked() + film_ + "-o film.gif 2>&1"));
    EXPECT_EQ(late.text(), "vantle: film.gif exists; --force overwrites it\n");
    EXPECT_EQ(shell(in("cat film.gif")).text(), "mine\n");
}

TEST_F(Outputs, ClearAwayWhatWasKilledAndNothingElse) {
    const std::string endless = "render -q lavfi:testsrc2=s=640x360 lavfi:testsrc2 -t 0 ";
    const auto once = [](const std::string& name) {
        return "until ls -A | grep -q '^" + name + "[.]vantle-'; do sleep 0.1; done; ";
    };
    for (const std::string signal : {"KILL", "XCPU"})
        EXPECT_TRUE(vantleWhile(endless + "--hold 600 -o o.mp4", once(".o.mp4") + "kill -s " + signal + " $$")
                        .killed);
    EXPECT_TRUE(vantleWhile(endless + "--hold 99 -o o_%d.png", once(".o_3.png") + "kill -s KILL $$").killed);
    const auto left = [&] { return shell(in("ls -A | grep -c '^[.]o.*[.]vantle-'")).text(); };
    EXPECT_GT(std::stoi(left()), 2);
    // Others use such names too, and one is still being written.
    shell(
        in("touch .o.mp4.aB3dE9 .o.mp4.vantle-short .o.mkv.vantle-aB3dE9; ln -s o.mp4 .o.mp4.vantle-aB3dE9"));
    const std::set<std::string> others{".o.mkv.vantle-aB3dE9", ".o.mp4.aB3dE9", ".o.mp4.vantle-aB3dE9",
                                       ".o.mp4.vantle-short"};
    const Outcome beside =
        vantleWhile(endless + "--hold 99 -o o_%d.png",
                    "sleep 2; " + once(".o_1.png") + VANTLE " " + film_ + "-f -o o.mp4; " VANTLE " " + film_ +
                        "-f -o o_%d.png; ls -A | grep -c '^[.]o_0[.]'; kill $$");
    EXPECT_TRUE(beside.text().starts_with("1\n")) << beside.text();
    std::set<std::string> now = files();
    std::erase_if(now, [](const std::string& name) { return !name.starts_with('.'); });
    EXPECT_EQ(now, others);
}

}  // namespace tests
