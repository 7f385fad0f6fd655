// What a film says of itself, as others read it.
#include <algorithm>
#include <cctype>
#include <map>
#include <string>

#include "command.h"

namespace tests {

using Metadata = CommandTest;

TEST_F(Metadata, IsThatOfTheFirstInputThatWasRecordedAndAChapterForEach) {
    ffmpeg(
        "-f lavfi -i testsrc2=s=64x48:r=25:d=2 -f lavfi -i sine=d=2 -c:v libx264 -g 10 -pix_fmt yuv420p -c:a "
        "aac -metadata creation_time=2024-05-06T07:08:09Z -metadata "
        "com.apple.quicktime.creationdate=2024-05-06T09:08:09+0200 -metadata "
        "com.apple.quicktime.location.ISO6709=+48.1000+011.5000+500.000/ -metadata "
        "com.apple.quicktime.make=Maker -metadata com.apple.quicktime.model=\"Model 5\" -metadata "
        "com.apple.quicktime.software=17.4 -metadata title=Private -metadata comment=Secret -metadata "
        "timecode=01:00:00:00 -movflags use_metadata_tags phone.mov");
    ffmpeg(
        "-i phone.mov -map 0:v -map 0:a -c copy -map_metadata -1 -metadata location=+01.0000+002.0000/ "
        "b.mp4");
    ffmpeg("-i b.mp4 -c copy -map_metadata -1 plain.mp4");
    ffmpeg(
        "-i phone.mov -map 0:v -map 0:a -c copy -movflags use_metadata_tags -metadata:s:v:0 rotate=90 "
        "turned.mov");
    const auto said = [&](const std::string& name) {
        return shell(in("ffprobe -v error -show_format -show_streams -show_chapters -of json " + name))
            .text();
    };
    for (const std::string options : {"mp4 --copy always", "mov --copy always", "mkv --copy always",
                                      "mp4 --copy never", "mov --copy never", "mkv", "webm"}) {
        const std::string output = "film." + options + " ";
        const std::string name = output.substr(0, output.find(' '));
        render("plain.mp4 +Row_split phone.mov +cut b.mp4 --duration 10f --chapters -f -q -o " + output);
        const nlohmann::json film = nlohmann::json::parse(said(name));
        std::map<std::string, std::string> tags;  // Matroska's names are capitals
        for (const auto& [key, value] : film["format"]["tags"].items()) {
            std::string lower = key;
            std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
            tags[lower] = value;
        }
        EXPECT_TRUE(tags["creation_time"].starts_with("2024-05-06T07:08:09")) << options;
        EXPECT_EQ(tags["com.apple.quicktime.creationdate"], "2024-05-06T09:08:09+0200") << options;
        EXPECT_TRUE(tags["location"].starts_with("+48.1000+011.5000")) << options << tags["location"];
        EXPECT_EQ(tags["make"] + ", " + tags["model"] + ", " + tags["software"], "Maker, Model 5, 17.4")
            << options;
        std::string chapters;
        for (const nlohmann::json& chapter : film["chapters"])
            chapters += chapter["tags"]["title"].get<std::string>() + " " +
                        chapter["start_time"].get<std::string>().substr(0, 5) + "-" +
                        chapter["end_time"].get<std::string>().substr(0, 5) + " ";
        // In Matroska all begins later by what the encoder of audio needs, as ffprobe says of the pictures.
        EXPECT_EQ(chapters, name.ends_with("webm")  ? "plain 0.007-1.607 phone 1.607-3.607 b 3.607-5.607 "
                            : name.ends_with("mkv") ? "plain 0.023-1.623 phone 1.623-3.623 b 3.623-5.623 "
                                                    : "plain 0.000-1.600 phone 1.600-3.600 b 3.600-5.600 ")
            << options << film["streams"][0]["start_time"];
        for (const std::string other : {"Private", "Secret", "timecode", "01:00:00:00", "rotat"})
            EXPECT_EQ(film.dump().find(other), std::string::npos) << options << ": " << other;
    }
    // Pictures that are encoded are turned, so that what turned them is not said again.
    render("turned.mov plain.mp4 -t 0 --duration 10f -q --copy never -o upright.mp4");
    EXPECT_NE(said("upright.mp4").find("Maker"), std::string::npos);
    EXPECT_EQ(said("upright.mp4").find("rotat"), std::string::npos);
    // A photo says it too, a quarter of a second after the clip; what says nothing was changed last.
    fs::copy_file(SOURCE_FOLDER "/Tests/vantle/tiled.heic", folder_ / "photo.heic");
    render("photo.heic plain.mp4 -t 0 --duration 10f -q -o photo.mp4");
    for (const std::string told :
         {"2024-05-06T07:08:09", "2024-05-06T09:08:09.25+02:00", "+48.85800-002.29400/"})
        EXPECT_NE(said("photo.mp4").find(told), std::string::npos) << told;
    std::string order;
    const nlohmann::json sorted = plan("plain.mp4 photo.heic phone.mov -t cut --sort date");
    for (const nlohmann::json& entry : sorted["timeline"])
        if (entry.contains("input")) order += entry["input"]["file"].get<std::string>() + " ";
    EXPECT_EQ(order, "phone.mov photo.heic plain.mp4 ");
    refuses("render plain.mp4 lavfi:color -t cut --sort date -o a.mp4", 2, "is no file");
    for (const std::string output : {"a.gif", "a.webp", "a_%d.png", "a.png --at 0.5"})
        refuses("render plain.mp4 b.mp4 -t 0 --chapters -o " + output, 2, "--chapters: OUT holds none");
}

}  // namespace tests
