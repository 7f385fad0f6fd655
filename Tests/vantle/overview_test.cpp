// Many transitions at once: `vantle sheet` and what `vantle gallery` leaves on disk.
#include <algorithm>
#include <tuple>

#include "command.h"

namespace tests {

using Overview = CommandTest;

TEST_F(Overview, SheetShowsTheFramesThatRenderDraws) {
    ffmpeg("-f lavfi -i testsrc2=s=64x36 -frames:v 1 from.png");
    ffmpeg("-f lavfi -i mandelbrot=s=64x36 -frames:v 1 to.png");
    const std::string sheet =
        "sheet -q from.png to.png -t 7 -t Twrl -t 7 --columns 3 --abreast 2 -o sheet.png";
    ASSERT_EQ(vantle(sheet).status, 0);
    const Bytes pixels = rgb("sheet.png");
    const std::ptrdiff_t width = 3 * std::stoi(probe("sheet.png", "stream=width"));
    std::vector<std::ptrdiff_t> places;
    for (const std::string transition : {"Cross_split", "36"})
        for (const std::string position : {"0.25", "0.5", "0.75"}) {
            render("from.png to.png -t " + transition + " -f -o at.png --at " + position);
            const Bytes frame = rgb("at.png");
            constexpr std::ptrdiff_t line = 3 * 64;
            const auto standsAt = [&](auto corner) {
                std::ptrdiff_t y = 0;
                while (y < 36 &&
                       std::equal(corner + y * width, corner + y * width + line, frame.begin() + y * line))
                    ++y;
                return y == 36;
            };
            auto corner = pixels.begin();
            const auto last = pixels.end() - 35 * width - line;
            while (corner < last && !standsAt(corner)) corner += 3;
            EXPECT_LT(corner, last) << transition << " at " << position;
            places.push_back(corner - pixels.begin());
        }
    EXPECT_TRUE(std::ranges::is_sorted(places));
    EXPECT_LT(places.back() - places.front(), width);  // side by side
}

TEST_F(Overview, RefusesBadInputAndLeavesWhatStoodThere) {
    shell(in("echo precious > there.png; mkdir empty photos; cp there.png photos/photo.png"));
    const std::string inputs = " lavfi:testsrc2=s=64x48:d=2 lavfi:testsrc2=s=64x48 -q -o ";
    const std::tuple<const char*, const char*, int, const char*> cases[] = {
        {"sheet", "there.png", 1, "--force"},
        {"sheet", "out.png -t Twrk", 2, "did you mean \"Twrl\""},
        {"sheet", "out.png --columns 100 --abreast 100 --size 64x64", 2, "more than"},
        {"gallery", "out --size 4000x4000", 2, "smaller --size"},
        {"gallery", "photos", 1, "--force"},
        {"gallery", "there.png -f", 1, "not a folder"},
        {"gallery", "empty/. -f", 1, "no name"},
        {"gallery", "photos -f", 1, "photo.png"},
    };
    for (const auto& [command, output, status, says] : cases)
        refuses(command + inputs + output, status, says);
    EXPECT_EQ(shell(in("cat there.png photos/*")).text(), "precious\nprecious\n");

    for (const std::string page : {"page", "empty"})
        ASSERT_EQ(vantle("gallery" + inputs + page + " -t 0 --positions 2").text(), "");
    const std::string again = VANTLE " gallery" + inputs + "page -f ";
    EXPECT_EQ(vantleWhile("gallery" + inputs + "page -f --size 1280x720", "kill -s INT $$").status, 130);
    EXPECT_EQ(shell(in("ls page/frames")).text(), "00.webp\n");
    ASSERT_EQ(vantle("gallery" + inputs + "page -f -t 3 -t 1 --positions 2").status, 0);
    EXPECT_EQ(shell(in("ls page/frames; ls -A")).text(),
              "00.webp\n01.webp\nempty\npage\nphotos\nthere.png\n");
    // A worker that cannot write ends it all.
    const Outcome full = shell(
        in("ulimit -f 64; " VANTLE " gallery lavfi:mandelbrot=s=640x360 lavfi:testsrc2 -q -o new 2>&1"));
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(full.text().starts_with("vantle: cannot write new/frames/")) << full.text();
    EXPECT_EQ(files(), (std::set<std::string>{"empty", "page", "photos", "there.png"}));
}

TEST_F(Overview, ReplacesOnlyWhatAGalleryMade) {
    const std::string gallery = " gallery lavfi:testsrc2=s=64x48:d=2 lavfi:testsrc2=s=64x48 -t 0 -q -o page ";
    ASSERT_EQ(vantle(gallery + "--positions 2 -t 1").status, 0);
    shell(in("cp -r page made"));
    const std::pair<const char*, const char*> cases[] = {
        {"touch page/notes.txt", "page holds notes.txt"},
        {"touch page/.hidden", "page holds .hidden"},
        {"cp page/frames/00.webp page/frames/holiday.jpg", "page holds frames/holiday.jpg"},
        {"ln -s index.html page/start.html", "page holds start.html"},
        {"mkdir page/frames/old", "page holds frames/old"},
        {"echo '<!-- mine -->' >>page/index.html", "page holds index.html"},
        {"mv page/frames photos && ln -s ../photos page/frames", "page holds frames"},
        {"rm page/made-by-vantle.txt", "no made-by-vantle.txt"},
        {"mkdir page/own; echo '0  own/photo.jpg' >>page/made-by-vantle.txt", "no made-by-vantle.txt"},
    };
    for (const auto& [change, says] : cases) {
        shell(in("rm -rf page photos; cp -r made page; " + std::string(change) + "; cp -a page before"));
        const Outcome outcome = vantle(gallery + "-f --positions 2");
        EXPECT_EQ(outcome.status, 1) << change;
        EXPECT_NE(outcome.text().find(says), std::string::npos) << outcome.text();
        EXPECT_EQ(shell(in("diff -r --no-dereference page before; rm -r before; ls -A")).text().find("\n."),
                  std::string::npos);
    }

    // What comes while it draws, and in the very moment of the exchange and after it.
    const std::string hooked = withRenamesHooked();
    const auto replace = [&](const std::string& moment) {
        shell(in("rm -rf page .page* photos; cp -r made page"));
        return shell(in(moment + hooked + gallery + "-f --positions 2 2>&1"));
    };
    shell(in("rm -rf page photos; cp -r made page"));
    const Outcome drawing = vantleWhile(gallery + "-f --size 1280x720", "echo mine >page/notes.txt");
    EXPECT_NE(drawing.text().find("page holds notes.txt"), std::string::npos) << drawing.text();
    EXPECT_EQ(shell(in("cat page/notes.txt; ls page/frames")).text(), "mine\n00.webp\n01.webp\n");
    for (const std::string fileSystem : {"", "PLAIN=1 "}) {
        EXPECT_EQ(replace(fileSystem).text(), "");
        EXPECT_EQ(shell(in("ls page/frames; ls -A")).text(), "00.webp\nmade\nmoment.cpp\nmoment.so\npage\n");
        EXPECT_EQ(replace(fileSystem + "BEFORE='echo mine >page/notes.txt'").text(), "");
        EXPECT_EQ(shell(in("cat page/notes.txt; ls page/frames")).text(), "mine\n00.webp\n");
        const Outcome kept = replace(fileSystem + "BEFORE='echo mine >page/index.html'");
        EXPECT_NE(kept.text().find("the folder before it held is in .page."), std::string::npos)
            << kept.text();
        EXPECT_EQ(shell(in("cat .page.*/index.html; ls .page.*/frames")).text(), "mine\n00.webp\n01.webp\n");
        // Killed: the old one is there whole, under either name.
        replace(fileSystem + "AFTER='kill -9 $PPID'");
        EXPECT_EQ(shell(in("diff -r page made || diff -r .page.* made")).status, 0);
    }
}

}  // namespace tests
