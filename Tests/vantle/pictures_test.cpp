// What files say of their own pictures: turned, mirrored, of oblong pixels, transparent, of other colours.
#include <array>
#include <fstream>
#include <iterator>
#include <utility>

#include "command.h"
#include "media/orientation.h"

namespace tests {

namespace {

/// A colour as one sees it: Red, Green, Blue, White, or some other.
char seen(const Bytes& rgb, std::size_t pixel) {
    int levels = 0;
    for (std::size_t i = 3 * pixel; i < 3 * pixel + 3; ++i) levels = 10 * levels + (rgb.at(i) + 64) / 128;
    return levels == 200 ? 'R' : levels == 20 ? 'G' : levels == 2 ? 'B' : levels == 222 ? 'W' : '?';
}

/// A picture whose quarters are red, green, blue and white, left to right and top to bottom.
constexpr const char* quarters =
    "-f lavfi -i \"color=red:s=32x16[a];color=lime:s=32x16[b];color=blue:s=32x16[c];color=white:s=32x16[d];"
    "[a][b][c][d]xstack=inputs=4:layout=0_0|w0_0|0_h0|w0_h0\" ";

}  // namespace

class PicturesAsMeant : public CommandTest {
   protected:
    /// The first frame of a rendering that starts with an input: its size, and the colours of its quarters.
    std::string shown(const std::string& input, const std::string& options = "") const {
        render(
            input +
            " lavfi:testsrc2=s=64x32:d=1 -t 0 --duration 0.2 --frames 0-0 --size first -f -o first_%d.png " +
            options);
        const std::string size = probe("first_0.png", "stream=width,height");
        const Bytes pixels = rgb("first_0.png");
        const auto width = static_cast<std::size_t>(std::stoi(size));
        const std::size_t height = pixels.size() / 3 / width;
        std::string text = size + ' ';
        for (const std::size_t y : {height / 4, 3 * height / 4})
            for (const std::size_t x : {width / 4, 3 * width / 4}) text += seen(pixels, y * width + x);
        return text;
    }

    /// A JPEG with a note of how the camera was held: `orientation` as cameras number it.
    void photo(const std::string& name, std::uint8_t orientation) const {
        ffmpeg(std::string(quarters) + "-frames:v 1 -q:v 1 plain.jpg");
        Bytes jpeg = contents("plain.jpg");
        const Bytes exif{0xFF, 0xE1, 0, 34, 'E',         'x', 'i', 'f', 0,    0, 'I', 'I',
                         '*',  0,    8, 0,  0,           0,   1,   0,   0x12, 1, 3,   0,
                         1,    0,    0, 0,  orientation, 0,   0,   0,   0,    0, 0,   0};
        jpeg.insert(jpeg.begin() + 2, exif.begin(), exif.end());
        std::ofstream(folder_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(jpeg.data()), static_cast<std::streamsize>(jpeg.size()));
    }
};

TEST_F(PicturesAsMeant, StandUprightAsTheirCameraWasHeld) {
    const char* const expected[] = {"64,32 RGBW", "64,32 GRWB", "64,32 WBGR", "64,32 BWRG",
                                    "32,64 RBGW", "32,64 BRWG", "32,64 WGBR", "32,64 GWRB"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        photo("photo.jpg", static_cast<std::uint8_t>(orientation));
        EXPECT_EQ(shown("photo.jpg"), expected[orientation - 1]) << orientation;
    }
    // As telephones keep them: of four tiles, cut off at the right and below, and turned.
    for (const char* const name : {"tiled.heic", "cut.heic"})
        fs::copy_file(SOURCE_FOLDER "/Tests/vantle/tiled.heic", folder_ / name);
    fs::resize_file(folder_ / "cut.heic", 700);
    EXPECT_EQ(shown("tiled.heic"), "120,124 BRWG");
    refuses("render cut.heic photo.jpg -t 0 -o a.mp4", 1, "cut.heic: Invalid input");
    ffmpeg(std::string(quarters) + "-t 1 -c:v libx264 -crf 4 -pix_fmt yuv420p lying.mp4");
    ffmpeg("-i lying.mp4 -c copy -metadata:s:v rotate=270 held.mp4");
    EXPECT_EQ(shown("held.mp4"), expected[5]);
    EXPECT_EQ(shown("held.mp4 turn=90"), expected[2]);
    EXPECT_EQ(shown("photo.jpg flip=h turn=90"), expected[3]);
}

TEST_F(PicturesAsMeant, KeepTheShapeAndTheColoursTheyWereMadeIn) {
    ffmpeg(std::string(quarters) + "-vf setsar=2 -t 0.4 -c:v libx264 -crf 4 -pix_fmt yuv420p oblong.mkv");
    EXPECT_TRUE(shown("oblong.mkv").starts_with("128,32 R"));
    // What only the container says counts too, and before what the pictures themselves say.
    ffmpeg("-i oblong.mkv -c copy -aspect 8:1 wider.mp4");
    EXPECT_TRUE(shown("wider.mp4").starts_with("256,32 R"));
    ffmpeg(std::string(quarters) + "-t 0.4 -c:v libx264 -pix_fmt yuv420p square.mp4");
    ffmpeg("-i square.mp4 -c copy -aspect 4:1 wide.mp4");
    EXPECT_TRUE(shown("wide.mp4").starts_with("128,32 R"));
    ffmpeg("-i square.mp4 -c copy -aspect 65:32 near.mp4");  // but for rounding
    EXPECT_TRUE(shown("near.mp4").starts_with("64,32 R"));
    // What is copied says its colours too.
    const std::string colours = "stream=color_range,color_space,color_transfer,color_primaries";
    render("square.mp4 +cut square.mp4 --copy always -o copied.mp4");
    EXPECT_EQ(probe("copied.mp4", colours), "tv,smpte170m,smpte170m,smpte170m");
    EXPECT_NE(vantle("render wide.mp4 wide.mp4 -t 0 --duration 2f --plan").text().find("128x32"),
              std::string::npos);
    // Copied as stored, shown as meant.
    render("wide.mp4 wide.mp4 -t 0 --duration 2f --copy auto -o joined.mp4");
    EXPECT_EQ(probe("joined.mp4", "stream=width,sample_aspect_ratio"), "64,2:1");
    ffmpeg("-f lavfi -i color=white@0.5:s=64x32,format=rgba -frames:v 1 glass.png");
    render("glass.png lavfi:testsrc2=s=64x32 -t 0 --at 0 -o seen.png");
    EXPECT_NEAR(rgb("seen.png").at(0), 128, 2);

    // One grey and one colour, coded in every way: they look the same, in pictures and in video.
    const auto firstPixel = [&](const std::string& input, const std::string& output) {
        render(input +
               " lavfi:color=c=0xA05028:s=64x32:d=1 -t 0 --duration 0.2 --frames 0-0 --size first -f -o " +
               output);
        const Bytes pixels = rgb(output.find('%') != std::string::npos ? "out_0.png" : output);
        return std::array{pixels.at(0), pixels.at(1), pixels.at(2)};
    };
    for (const char* const matrix : {"bt601", "bt709"})
        for (const char* const range : {"tv", "pc"}) {
            ffmpeg(
                std::string("-f lavfi -i color=c=0xA05028:s=64x32,format=gbrp -vf scale=out_color_matrix=") +
                matrix + ":out_range=" + range + ",format=yuv444p -colorspace " +
                (matrix == std::string("bt709") ? "bt709" : "smpte170m") + " -color_range " + range +
                " -t 0.4 -c:v ffv1 coded.mkv");
            for (const char* const output : {"out_%d.png", "out.mkv"}) {
                const auto [r, g, b] = firstPixel("coded.mkv", output);
                EXPECT_NEAR(r, 0xA0, 3) << matrix << range << output;
                EXPECT_NEAR(g, 0x50, 3) << matrix << range << output;
                EXPECT_NEAR(b, 0x28, 3) << matrix << range << output;
            }
        }
    // What a file does not say is meant by its height.
    for (const auto& [size, matrix] : {std::pair{"16x720", "bt709"}, {"16x718", "bt601"}}) {
        ffmpeg(std::string("-f lavfi -i color=c=0xA05028:s=") + size +
               ",format=gbrp -vf scale=out_color_matrix=" + matrix +
               ",format=yuv444p,setparams=colorspace=unknown -t 0.4 -c:v ffv1 coded.mkv");
        EXPECT_NEAR(firstPixel("coded.mkv", "out_%d.png")[1], 0x50, 3) << size;
        // So is what becomes of RGB.
        ffmpeg(std::string("-f lavfi -i color=red:s=") + size + " -t 0.4 -c:v libx264rgb rgb.mkv");
        render("rgb.mkv rgb.mkv -t 0 --duration 0.1 -f -o rgb.mp4");
        EXPECT_EQ(
            probe("rgb.mp4", colours),
            std::string("tv,") + (matrix == std::string("bt709") ? matrix : "smpte170m") + ",bt709,bt709");
    }
    // From one range to the other and back, in joins and between them.
    std::string film;
    for (const std::string range : {"pc", "tv"}) {
        ffmpeg(
            "-f lavfi -i color=c=0xA05028:s=64x32,format=gbrp -vf scale=out_color_matrix=bt709:out_range=" +
            range + ",format=yuv420p -colorspace bt709 -color_range " + range + " -t 0.24 -c:v ffv1 " +
            range + ".mkv");
        film += range + ".mkv ";
    }
    render(film + film + "-t 0 --duration 2f -f -o out.mkv --encoder ffv1");
    const Bytes pixels = rgb("out.mkv");
    for (std::size_t i = 0; i < pixels.size(); i += std::size_t{3} * 64 * 32)
        EXPECT_NEAR(pixels[i + 1], 0x50, 3) << i;
    // HDR is mapped, and says so no more.
    ffmpeg(
        "-f lavfi -i color=gray:s=64x32,format=yuv420p10le -t 0.4 -color_trc arib-std-b67 -color_primaries "
        "bt2020 "
        "-colorspace bt2020nc -c:v ffv1 hdr.mkv");
    render("hdr.mkv hdr.mkv -t 0 --duration 2f -o mapped.mp4");
    EXPECT_EQ(probe("mapped.mp4", "stream=color_space,color_transfer,color_primaries"), "bt709,bt709,bt709");
}

// A video's chroma comes back from a transition as it went in; of a picture to look at it is interpolated.
TEST_F(PicturesAsMeant, KeepTheSharpnessOfTheirChroma) {
    ffmpeg(
        "-f lavfi -i \"color=gray:s=64x32:r=25,format=yuv420p,geq=lum=128:cb='90+80*mod(X,2)':cr=128\" -t 1 "
        "-c:v ffv1 stripes.mkv");
    render(
        "stripes.mkv lavfi:testsrc2=s=64x32 -t Row_split --duration 0.4 --frames 16-16 -o at.mkv "
        "--encoder-option qp=0");
    const auto contrast = [&](const std::string& name) {
        const Bytes pixels = rgb(name);
        return std::abs(pixels.at(2 + 3 * 16) - pixels.at(2 + 3 * 18));
    };
    render("stripes.mkv lavfi:testsrc2=s=64x32 -t Row_split --duration 0.4 --at 0 -o at.png");
    EXPECT_GT(contrast("at.mkv"), 130);
    EXPECT_LT(contrast("at.png"), 120);
}

TEST_F(PicturesAsMeant, AreThoseThatMoveAndWholeOnes) {
    // A camcorder's, of which each holds two moments: nearer to one of them than as it is stored.
    ffmpeg("-f lavfi -i testsrc2=s=320x240:r=50 -t 2 -c:v ffv1 moments.mkv");
    ffmpeg(
        "-i moments.mkv -vf tinterlace=interleave_top,setfield=tff -c:v libx264 -crf 4 -pix_fmt yuv420p "
        "-flags "
        "+ilme+ildct -x264-params tff=1 fields.mp4");
    ffmpeg("-i fields.mp4 -c copy fields.ts");
    const auto likeness = [&](const std::string& file) {
        return std::stod(
            shell(in("ffmpeg -i " + file +
                     " -i moments.mkv -lavfi \"[0]trim=end_frame=40[a];[1]select='not("
                     "mod(n,2))',setpts=N/25/TB,format=yuv420p,trim=end_frame=40[b];[a][b]psnr\" "
                     "-f null - 2>&1 | sed -n 's/.*average:\\([0-9.]*\\).*/\\1/p'"))
                .text());
    };
    for (const std::string file : {"fields.mp4", "fields.ts"}) {
        const Outcome outcome = vantle("render " + file + " " + file + " -t 0 --duration 2f -f -o film.mp4");
        EXPECT_NE(outcome.text().find(file + ": its pictures are interlaced"), std::string::npos);
        EXPECT_NE(outcome.text().find("film.mp4: 98 frames of 320x240\n"), std::string::npos)
            << outcome.text();
        EXPECT_GT(likeness("film.mp4"), likeness(file) + 2);
    }
    // A cover is none, be it alone or the first of two.
    ffmpeg("-f lavfi -i color=s=640x480 -frames:v 1 cover.png");
    ffmpeg("-f lavfi -i sine -i cover.png -map 0 -map 1 -t 1 -disposition:v attached_pic -c:v copy song.mp3");
    ffmpeg(
        "-i cover.png -i fields.mp4 -map 0 -map 1 -c copy -disposition:v:0 attached_pic -disposition:v:1 0 "
        "covered.mp4");
    refuses("render song.mp3 fields.mp4 -t 0 -o a.mp4", 1, "song.mp3: holds no picture");
    EXPECT_EQ(plan("covered.mp4 fields.mp4 -t 0 --duration 2f")["width"], 320);
}

TEST(Orientations, AreUndoneByTheirInverses) {
    using namespace vantle;
    for (const int turns : {0, 1, 2, 3})
        for (const bool mirrored : {false, true}) {
            av::Frame picture = av::makeFrame();
            picture->width = 3;
            picture->height = 2;
            picture->format = AV_PIX_FMT_GRAY8;
            av::check(av_frame_get_buffer(picture.get(), 0), "frame");
            for (int i = 0; i < 6; ++i)
                picture->data[0][i / 3 * picture->linesize[0] + i % 3] = static_cast<std::uint8_t>(40 * i);
            const Orientation held{turns, mirrored};
            EXPECT_EQ(inTurn(held, inverse(held)), Orientation{});
            EXPECT_EQ(orientationOf(matrixOf(held)), held);
            std::vector<Filter> filters = upright(held);
            std::ranges::copy(upright(inverse(held)), std::back_inserter(filters));
            filters.push_back({"format", {{"pix_fmts", "gray"}}});
            Filters there(*picture, {1, 25}, filters);
            there.push(av::share(*picture));
            const av::Frame back = there.pull();
            for (int i = 0; i < 6; ++i)
                EXPECT_EQ(back->data[0][i / 3 * back->linesize[0] + i % 3], 40 * i) << turns << mirrored;
        }
}

}  // namespace tests
