// The command line itself: what it lists, what it refuses and what it leaves behind.
#include "command.h"

#include <sys/xattr.h>

#include <cstdlib>
#include <tuple>

namespace tests {

using Command = CommandTest;

TEST_F(Command, ListsTheCatalogue) {
    const auto rows = nlohmann::json::parse(vantle("list --json").text());
    ASSERT_GE(rows.size(), 42U);
    EXPECT_EQ(rows[1], (nlohmann::json{{"index", 1},
                                       {"name", "Col_vantle"},
                                       {"function", "TrColVantle"},
                                       {"family", "strips"},
                                       {"guid", "25045AAA-9ACA-445c-B24C-21052C9B8D27"},
                                       {"sentence",
                                        "Bands of columns open with the incoming picture from the top and "
                                        "from the bottom in turn."}}));
    EXPECT_NE(vantle("list").text().find("TrColVantle"), std::string::npos);
    EXPECT_NE(vantle("list dip").text().find("fade-black"), std::string::npos);
}

TEST_F(Command, RefusesBadInputInOneLineAndLeavesNothing) {
    ffmpeg("-f lavfi -i testsrc2=s=64x48:r=25:d=2 -movflags +faststart clip.mp4");
    ffmpeg("-f lavfi -i testsrc2=s=640x480 -frames:v 1 still.jpg");
    ffmpeg("-f lavfi -i testsrc2=s=640x480 -frames:v 1 still.png");
    ffmpeg("-f lavfi -i sine=d=1 audio.wav");
    shell(
        in("for f in clip.mp4 still.jpg still.png; do head -c $(($(stat -c %s $f) / 2)) $f > half_$f; done;"
           " : > empty.mp4; echo text > text.mp4; printf 'PK\\3\\4..' > zip.mp4; printf '\\1\\2' > noise.mp4;"
           " ffmpeg -v error -i clip.mp4 -c copy whole.mp4 && head -c -99 whole.mp4 > "
           "recording.mp4; cp clip.mp4 -- -t.mp4; mkdir folder; cp clip.mp4 there.mp4;"
           " cp still.png 7.png; mkfifo pipe.mp4; ln -s none.mp4 link.mp4; ln -s round.mp4 round.mp4"));
    struct Case {
        const char* arguments;
        int status;
        const char* says;
    };
    const Case cases[] = {
        {"none.mp4 clip.mp4 -t 0 -o out.mp4", 1, "none.mp4: No such file"},
        {"clip.mp4 empty.mp4 -t 0 -o out.mp4", 1, "empty.mp4: is empty"},
        {"text.mp4 clip.mp4 -t 0 -o out.mp4", 1, "text.mp4: is text"},
        {"zip.mp4 clip.mp4 -t 0 -o out.mp4", 1, "zip.mp4: is a zip archive"},
        {"recording.mp4 clip.mp4 -t 0 -o out.mp4", 1, "recording.mp4: was cut off"},
        {"noise.mp4 clip.mp4 -t 0 -o out.mp4", 1, "noise.mp4: is of no kind"},
        {"half_clip.mp4 clip.mp4 -t 0 -o out.mp4", 1, "half_clip.mp4: "},
        {"clip.mp4 half_clip.mp4 -t 0 -o out.mp4 --duration 0.2", 1, "the file is truncated"},
        {"half_still.jpg clip.mp4 -t 0 -o out.mp4", 1, "half_still.jpg: "},
        {"half_still.png clip.mp4 -t 0 -o out.mp4", 1, "half_still.png: "},
        {"audio.wav clip.mp4 -t 0 -o out.mp4", 1, "no picture"},
        {"folder clip.mp4 -t 0 -o out.mp4", 1, "is a directory"},
        {"pipe.mp4 clip.mp4 -t 0 -o out.mp4", 1, "pipe.mp4: is not a regular file"},
        {"round.mp4 clip.mp4 -t 0 -o out.mp4", 1, "round.mp4: Too many levels"},
        {"still.png clip.mp4 -t 0 -o link.mp4", 1, "--force"},
        {"still.png clip.mp4 -t 0 -o ./clip.mp4 --force", 1, "is an input"},
        {"7.png still.png -t 0 -o %d.png --force", 1, "7.png is an input"},
        {"still.png 7.png -t 0 --joins 7.png --force", 1, "7.png is an input"},
        {"clip.mp4 clip.mp4 -t 0 -o pipe.mp4 --force", 1, "pipe.mp4 is not a regular file"},
        {"lavfi:nullsrc=s=20000x2:d=1 clip.mp4 -t 0 -o out.mp4 --size first", 1, "20000x2"},
        {"lavfi:nonsense clip.mp4 -t 0 -o out.mp4", 1, "lavfi:nonsense: "},
        {"clip.mp4 clip.mp4 -t 0 -o there.mp4", 1, "--force"},
        {"clip.mp4 clip.mp4 -t 0 -o folder/none/out.mp4", 1, "No such file"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --duration 2.5", 1, "fewer than"},
        {"still.jpg clip.mp4 -t 0 -o out.mp4 --duration 2.5", 1, "fewer than"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --frames 500-600", 1, "frame 500"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --plugin none.so", 1, "none.so"},
        {"clip.mp4 clip.mp4 -t Row_vntle -o out.mp4", 2, "did you mean \"Row_vantle\""},
        {"clip.mp4 clip.mp4 -t 0 -o out.xyz", 2, "out.xyz"},
        {"clip.mp4 clip.mp4 -t 0 -o out.png", 2, "--at"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --at 0.5", 2, "--at"},
        {"clip.mp4 clip.mp4 -t 0 -o out.png --at 1.5", 2, "--at"},
        {"clip.mp4 clip.mp4 -t 0 -o out.png --at nan", 2, "--at"},
        {"clip.mp4 clip.mp4 -t 0 -o out.png --at 1junk:0.5", 2, "--at"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --frames \" 1- 5\"", 2, "--frames"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --size 0x48", 2, "0x48"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --size 65x48", 2, "even"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --size 16384x16384", 2, "more pixels than"},
        {"clip.mp4 +Linear Wipe Down clip.mp4 -o out.mp4", 2, "quoted: \"+Linear Wipe Down\""},
        {"-t.mp4 clip.mp4 -t 0 -o out.mp4", 2, "written ./-t.mp4"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --duration 0", 2, "--duration"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --frames 6-5", 2, "--frames"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --fps fast", 2, "--fps"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --fit tight", 2, "--fit"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --encoder-option crf", 2, "KEY=VALUE"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --encoder-option colour=red", 2, "no option colour"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --colour", 2, "--colour"},
        {"clip.mp4 -t 0 -o out.mp4", 2, "two inputs"},
        {"clip.mp4 clip.mp4 out=1 clip.mp4 -t 0 -o out.mp4", 1,
         "clip.mp4: shows 25 frames (1.00 s), fewer than the 50"},
        {"clip.mp4 in=3 clip.mp4 -t 0 -o out.mp4", 1, "in lies after its end, 2.00 s"},
        {"clip.mp4 clip.mp4 none.mp4 -t 0 -o out.mp4", 1, "none.mp4: No such file"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music none.mp3", 1, "none.mp3: No such file"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music clip.mp4", 1, "clip.mp4: holds no audio"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music audio.wav in=2", 1, "audio.wav: in lies after its end"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music=audio.wav in=2 out=1s", 1, "out does not lie after in"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music audio.wav fit=cover", 2,
         "fit=cover belongs after an input"},
        {"clip.mp4 volume=11 clip.mp4 -t 0 -o out.mp4", 2, "volume=11: \"11\" is no volume"},
        {"clip.mp4 volume=2 clip.mp4 -t 0 -o out.mp4", 1, "clip.mp4: has no audio"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music-volume nan", 2, "\"nan\" is no volume"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --music-duck no", 2, "--music-duck requires --music"},
        {"clip.mp4 clip.mp4 -t 0", 2, "-o OUT is missing"},
        {"clip.mp4 +Twirl clip.mp4 -o out.mp4", 2, "did you mean \"Twrl\""},
        {"clip.mp4 +Twrl clip.mp4 --sort natural -o out.mp4", 2, "+Twrl has no place"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --duration 1e9", 2, "--duration"},
        {"clip.mp4 clip.mp4 clip.mp4 -t 0 --duration 0.4 -o out.png --at 0.5", 2, "which of the 2 joins"},
        {"clip.mp4 clip.mp4 -t 0 -o out.png --at 2:0.5", 2, "has 1 join"},
        {"clip.mp4 clip.mp4 -t 0 -o out.mp4 --encoder nonsense", 2, "no such encoder"},
        {"clip.mp4 clip.mp4 -t 0 -o out.webm --encoder libx264", 2, ".webm does not hold what libx264 makes"},
        {"clip.mp4 clip.mp4 -t 0 -o a_%d.png --encoder libx264", 2, "for a video"},
        {"clip.mp4 clip.mp4 -t cut --joins a.png", 2, "only cuts"},
        {"clip.mp4 clip.mp4 -t 0 --plan --json --fps x", 2, "--fps"},
    };
    for (const Case& bad : cases) refuses(std::string("render -q ") + bad.arguments, bad.status, bad.says);
    for (const auto& [words, says] :
         {std::pair{"rendr clip.mp4 clip.mp4", "did you mean render?"},
          {"clip.mp4 clip.mp4 -o out.mp4", "the command is missing before clip.mp4"},
          {"help lists", "did you mean list?"},
          {"render clip.mp4 --sise=2x2", "not expected: --sise=2x2 (did you mean --size?)"},
          {"film", "called \"film\"; the commands are render, sheet, gallery and list"},
          {"", "a command is missing"}})
        refuses(words, 2, says);
    EXPECT_EQ(vantle("help list").text(), vantle("list --help").text());
    EXPECT_EQ(contents("there.mp4"), contents("clip.mp4"));
}

TEST_F(Command, KeepsWhatStoodThereWhenItCannotFinish) {
    shell(in("echo precious > out.mp4"));
    const Bytes precious = contents("out.mp4");
    const std::string endless =
        "render -q -f lavfi:testsrc2=s=640x360 lavfi:testsrc2 --hold 600 -t 0 -o out.mp4";
    // A limit on the size of files fails a write as a full disk does.
    const Outcome full = shell(in("ulimit -f 16; " VANTLE " " + endless + " 2>&1"));
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.text().find("cannot write out.mp4: "), std::string::npos) << full.text();
    // A still is never read on, and its rendering ends all the same.
    const std::string held =
        "render -q -f lavfi:testsrc2=s=640x360:d=0.04 lavfi:testsrc2 -t 0 -o out.mp4 --hold 9999";
    for (const auto& [arguments, signal, status] :
         {std::tuple{endless, "INT", 130}, {endless, "TERM", 143}, {held, "HUP", 129}}) {
        const Outcome stopped = vantleWhile(arguments, std::string("kill -s ") + signal + " $$");
        EXPECT_TRUE(stopped.killed) << "a shell's loop goes on";
        EXPECT_EQ(stopped.status, status);
        EXPECT_EQ(stopped.text(), "vantle: interrupted; nothing was written\n");
    }
    EXPECT_EQ(contents("out.mp4"), precious);
    EXPECT_EQ(files(), std::set<std::string>{"out.mp4"});
    render("-f lavfi:testsrc2=s=64x48 lavfi:testsrc2=s=64x48 -t 0 --duration 0.1 -o out.mp4");
    EXPECT_EQ(probe("out.mp4", "stream=codec_name"), "h264");
}

TEST_F(Command, SaysWhenWhatItPrintsIsLost) {
    const Outcome full = shell(in(VANTLE " list 2>&1 >/dev/full"));
    EXPECT_EQ(full.status, 1);
    EXPECT_NE(full.text().find("standard output: No space"), std::string::npos) << full.text();
    const Outcome unread = shell(in("{ { sleep 0.3; " VANTLE " list 2>&3; echo $? >&3; } | true; } 3>&1"));
    EXPECT_EQ(unread.text(), "141\n");  // as others end, without a word
}

TEST_F(Command, KeepsLinksRightsAndAttributesOfWhatItReplaces) {
    shell(
        in("mkdir far; echo old >far/film.gif; chmod 600 far/film.gif; ln -s far/film.gif link.gif;"
           " touch f_1.png; chmod 440 f_1.png; chown 1:2 f_1.png; mkdir page; chmod 2750 page"));
    const bool keepsAttributes = setxattr((folder_ / "far/film.gif").c_str(), "user.note", "mine", 4, 0) == 0;
    const std::string owned = rights("f_1.png");
    const std::string inputs =
        "lavfi:testsrc2=s=16x16:d=0.2 lavfi:testsrc2=s=16x16 -t 0 --duration 0.1 -f -o ";
    render(inputs + "link.gif");
    EXPECT_TRUE(fs::is_symlink(folder_ / "link.gif"));
    EXPECT_EQ(probe("far/film.gif", "stream=codec_name"), "gif");
    EXPECT_TRUE(rights("link.gif -L").starts_with("600 "));
    std::array<char, 8> note{};
    getxattr((folder_ / "far/film.gif").c_str(), "user.note", note.data(), note.size());
    EXPECT_EQ(std::string(note.data()), keepsAttributes ? "mine" : "");
    shell(in("umask 037; " VANTLE " render -q " + inputs + "f_%d.png --frames 1-2"));
    EXPECT_EQ(rights("f_1.png"), owned);
    EXPECT_TRUE(rights("f_2.png").starts_with("640 "));
    EXPECT_EQ(vantle("gallery -q --positions 2 " + inputs + "page").status, 0);
    EXPECT_TRUE(rights("page").starts_with("2750 "));
    // Until it is complete nobody else reads it.
    const Outcome watched =
        vantleWhile("render -q -f lavfi:testsrc2 lavfi:testsrc2 --hold 600 -t 0 -o link.gif",
                    "stat -c %a far/.film.gif.*; kill $$");
    EXPECT_TRUE(watched.text().starts_with("600\n")) << watched.text();
}

TEST_F(Command, TakesTheLongestNames) {
    const auto name = [](std::size_t bytes, const std::string& ending) {
        std::string text = "x";
        while (text.size() + 2 <= bytes - ending.size()) text += "\u00e9";  // of two bytes
        return text.append(bytes - ending.size() - text.size(), 'x') + ending;
    };
    const std::string inputs = " -q lavfi:testsrc2=s=16x16:d=0.2 \"lavfi:testsrc2=s=16x16" +
                               std::string(300, ' ') + "\" -t 0 --duration 0.1 -f -o ";
    for (const std::size_t bytes : {130U, 131U, 250U, 255U}) {
        EXPECT_EQ(vantle("render" + inputs + name(bytes, ".gif")).status, 0) << bytes;
        for (int times = 0; times < 2; ++times)
            EXPECT_EQ(vantle("gallery --positions 2" + inputs + name(bytes, "")).text(), "") << bytes;
    }
    EXPECT_EQ(files().size(), 8U);
    // What is half written has a name of whole characters too, for file systems that take no other.
    const Outcome watched =
        vantleWhile("render -q lavfi:testsrc2 lavfi:testsrc2 --hold 600 -t 0 -o " + name(255, ".mp4"),
                    "ls -d .x*; kill $$");
    EXPECT_NE(watched.text().find("\u00e9."), std::string::npos) << watched.text();
}

TEST_F(Command, WorksInstalledAndServesOtherHosts) {
    ASSERT_EQ(
        shell(in(CMAKE_COMMAND " --install " BUILD_FOLDER " --prefix first >/dev/null && mv first there"))
            .status,
        0);
    EXPECT_EQ(
        shell(in("cd there && find . ! -type d | grep -Ev '/frei0r-1/|/share/' | LC_ALL=C sort")).text(),
        "./bin/vantle\n./include/tp_vantle/catalogue/catalogue.h\n./include/tp_vantle/catalogue/contract.h\n"
        "./include/tp_vantle/frame/contract.h\n"
        "./" LIBDIR
        "/cmake/tp_vantle/tp_vantle-config-version.cmake\n"
        "./" LIBDIR
        "/cmake/tp_vantle/tp_vantle-config.cmake\n"
        "./" LIBDIR
        "/libtp_vantle.so\n./lib/pkgconfig/tp_vantle.pc\n"
        "./" LIBDIR "/vantle/libBrix_ImageProc.so\n./" LIBDIR "/vantle/libQeltLogger.so\n");
    EXPECT_EQ(shell(in("there/bin/vantle list")).text(), vantle("list").text());
    // A host's own libraries take the place of those that stand in for them.
    EXPECT_EQ(shell(in(READELF " -d there/" LIBDIR "/libtp_vantle.so | grep -E 'RUNPATH|RPATH'")).text(), "");
    // As a package for several processors has it.
    shell(in("{ cmake -S " SOURCE_FOLDER
             " -B b -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_LIBDIR=lib/some-linux-gnu"
             " -DVANTLE_TESTS=OFF -DVANTLE_BENCH=OFF && DESTDIR=root cmake --install b --component "
             "development; } >log"));
    EXPECT_EQ(
        shell(in("echo '#include <catalogue/catalogue.h>' >host.cpp && c++ -std=c++20 -c host.cpp "
                 "$(PKG_CONFIG_PATH=root/usr/lib/some-linux-gnu/pkgconfig pkg-config tp_vantle --cflags)"))
            .status,
        0);
}

}  // namespace tests
