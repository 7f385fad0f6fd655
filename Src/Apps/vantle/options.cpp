#include "options.h"

#include <charconv>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/log.h>
#include <libavutil/parseutils.h>
}

namespace vantle {

namespace {

// Functions that CLI11 calls with an option's text; what they throw becomes a line of "wrong usage".

AVRational parseRate(const std::string& text) {
    AVRational rate{};
    if (av_parse_video_rate(&rate, text.c_str()) < 0 || av_q2d(rate) > 1000.0)
        throw CLI::ValidationError("--fps", "\"" + text + "\" is no frame rate (as 25, 29.97 or 30000/1001)");
    return rate;
}

Size parseSize(const std::string& text) {
    Size size;
    if (av_parse_video_size(&size.width, &size.height, text.c_str()) < 0 || size.width > largestSide ||
        size.height > largestSide)
        throw CLI::ValidationError("--size", "\"" + text + "\" is no size (as 1280x720, at most 16384 each)");
    if (av_image_check_size(static_cast<unsigned>(size.width), static_cast<unsigned>(size.height), 0,
                            nullptr) < 0)
        throw CLI::ValidationError(
            "--size", "\"" + text + "\" has more pixels than encoders take, which are about 260 million");
    return size;
}

/// Of a picture of 16:9, as in 1080p.
std::optional<int> linesIn(const std::string& text) {
    int lines = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), lines);
    const bool isLines = error == std::errc() && end + 1 == text.data() + text.size() && *end == 'p';
    if (!isLines || lines < 144 || lines > 4320 || lines % 2 != 0) return {};
    return lines;
}

}  // namespace

CLI::Validator aTime(double longest) {
    return {[longest](const std::string& text) {
                const std::optional<Time> time = parseTime(text);
                if (!time) return "\"" + text + "\" is no time (as 2.5, 1:02.5, 500ms or 12f)";
                if (time->value <= 0 || (!time->inFrames && time->number() > longest))
                    return "\"" + text + "\" is no length of time above 0";
                return std::string();
            },
            ""};
}

Time timeOf(const std::string& text) { return parseTime(text).value_or(Time{}); }

void addOverlap(CLI::App& command, FilmRequest& film) {
    command
        .add_option_function<std::string>(
            "--duration", [&](const std::string& text) { film.duration = timeOf(text); },
            "Length of a transition: seconds, or frames as 12f (default: 1)")
        ->type_name("TIME")
        ->check(aTime(3600.0));
    command
        .add_option_function<std::string>(
            "--fps",
            [&](const std::string& text) {
                if (text == "first")
                    film.firstRate = true;
                else
                    film.rate = parseRate(text);
            },
            "Frames per second, or first: those of the first input that has them")
        ->type_name("RATE|first");
    command
        .add_option_function<std::string>(
            "--fit", [&](const std::string& text) { film.fit = parseFit(text).value_or(Fit::contain); },
            "How an input of another shape fills the picture (default: contain)")
        ->type_name("contain|cover|stretch|blur")
        ->check(CLI::IsMember({"contain", "cover", "stretch", "blur"}));
}

void addSize(CLI::App& command, std::optional<Size>& size, const std::string& meaning) {
    command
        .add_option_function<std::string>(
            "--size", [&](const std::string& text) { size = parseSize(text); }, meaning)
        ->type_name("SIZE");
}

void addFilmSize(CLI::App& command, FilmRequest& film) {
    command
        .add_option_function<std::string>(
            "--size",
            [&](const std::string& text) {
                if (text == "first")
                    film.firstSize = true;
                else if (text == "vertical")
                    film.size = Size{1080, 1920};
                else if (const auto lines = linesIn(text))
                    film.lines = *lines;
                else
                    film.size = parseSize(text);
            },
            "WIDTHxHEIGHT of the output; 1080p, on its side where most of the film is upright; vertical, "
            "1080x1920; first, the first input's (default: what most of the film is like)")
        ->type_name("SIZE|720p|1080p|2160p|vertical|first");
}

void addCommon(CLI::App& command, Delivery& delivery) {
    command.add_flag("-f,--force", delivery.force, "Overwrite OUT if it exists");
    command.add_flag("-q,--quiet", delivery.quiet, "Say nothing but errors");
    command.add_flag_callback(
        "-v,--verbose", [] { av_log_set_level(AV_LOG_VERBOSE); }, "Show what FFmpeg's libraries say");
    command.add_option("--plugin", delivery.plugin, "The plug-in to load (default: the installed one)")
        ->type_name("FILE");
}

void addOverview(CLI::App& command, OverviewOptions& options, const std::string& output) {
    command
        .add_option("FROM", options.film.shots[0].file,
                    "The input that plays first, until the transition ends")
        ->type_name("FILE")
        ->required();
    command.add_option("TO", options.film.shots[1].file, "The input that the transition leads to")
        ->type_name("FILE")
        ->required();
    command.add_option("-o,--output", options.delivery.output, output)->type_name("FILE")->required();
    command
        .add_option("-t,--transition", options.transitions,
                    "Only this one, by catalogue name, index, GUID or function name; repeatable")
        ->type_name("TRANSITION")
        ->allow_extra_args(false)
        ->take_all();
    addOverlap(command, options.film);
    addCommon(command, options.delivery);
}

}  // namespace vantle
