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
    const std::set<std::string> before = files();
    const std::tuple<const char*, const char*, int, const char*> cases[] = {
        {"sheet", "there.png", 1, "--force"},
        {"sheet", "out.png -t Twrk", 2, "did you mean \"Twrl\""},
        {"sheet", "out.png --columns 100 --abreast 100 --size 64x64", 2, "more than"},
        {"gallery", "out --size 4000x4000", 2, "smaller --size"},
        {"gallery", "empty", 1, "--force"},
        {"gallery", "there.png -f", 1, "not a folder"},
        {"gallery", "photos -f", 1, "photo.png"},
    };
    for (const auto& [command, output, status, says] : cases) {
        const Outcome outcome = vantle(command + inputs + output);
        EXPECT_EQ(outcome.status, status) << output << "\n" << outcome.text();
        EXPECT_NE(outcome.text().find(says), std::string::npos) << output << "\n" << outcome.text();
        EXPECT_EQ(files(), before) << output;
    }
    EXPECT_EQ(shell(in("cat there.png photos/*")).text(), "precious\nprecious\n");

    ASSERT_EQ(vantle("gallery" + inputs + "page -t 0 --positions 2").status, 0);
    const std::string again = VANTLE " gallery" + inputs + "page -f ";
    EXPECT_EQ(vantleWhile("gallery" + inputs + "page -f --size 1280x720", "kill -s INT $$").status, 130);
    EXPECT_EQ(shell(in("ls page/frames")).text(), "00.webp\n");
    ASSERT_EQ(shell(in(again + "-t 3 -t 1 --positions 2")).status, 0);
    EXPECT_EQ(shell(in("ls page/frames; ls -A")).text(),
              "00.webp\n01.webp\nempty\npage\nphotos\nthere.png\n");
}

}  // namespace tests
