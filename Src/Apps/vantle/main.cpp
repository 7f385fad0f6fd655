// The command line: what the options mean, and what the exit status says.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/parseutils.h>
}

#include "Host/error.h"
#include "list_command.h"
#include "overview/gallery.h"
#include "overview/sheet.h"
#include "render_command.h"
#include "system/interrupt.h"

namespace {

using namespace vantle;

constexpr int failed = 1;
constexpr int wrongUsage = 2;

// A range alone lets "nan" pass, which lies beyond neither bound.
CLI::Validator within(double lowest, double highest) {
    const auto isNumber = [](const std::string& text) {
        return std::isnan(std::strtod(text.c_str(), nullptr)) ? "\"" + text + "\" is no number"
                                                              : std::string();
    };
    return CLI::Range(lowest, highest) & CLI::Validator(isNumber, "");
}

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
    return size;
}

Fit parseFit(const std::string& text) {
    if (text == "contain") return Fit::contain;
    if (text == "cover") return Fit::cover;
    if (text == "stretch") return Fit::stretch;
    throw CLI::ValidationError("--fit", "\"" + text + "\" is none of contain, cover, stretch");
}

std::pair<std::string, std::string> parseSetting(const std::string& text) {
    const std::size_t middle = text.find('=');
    if (middle == std::string::npos || middle == 0)
        throw CLI::ValidationError("--encoder-option", "\"" + text + "\" is not KEY=VALUE");
    return {text.substr(0, middle), text.substr(middle + 1)};
}

FrameRange parseFrames(const std::string& text) {
    long long first = 0;
    long long last = 0;
    int length = 0;
    if (std::sscanf(text.c_str(), "%lld-%lld%n", &first, &last, &length) != 2 ||
        length != static_cast<int>(text.size()) || first < 0 || last < first)
        throw CLI::ValidationError("--frames", "\"" + text + "\" is no range of frames (as 10-19)");
    // Positions in the sound are counted from these: far beyond any video is far enough.
    constexpr long long farthest = FrameRange{}.last;
    return {std::min(first, farthest), std::min(last, farthest)};
}

// Options that mean the same in several commands; `Options` holds their values.

template <typename Options>
void addInputs(CLI::App& command, Options& options) {
    command.add_option("FROM", options.from, "What is left")->required();
    command.add_option("TO", options.to, "What comes")->required();
}

template <typename Options>
void addOverlap(CLI::App& command, Options& options) {
    command.add_option("--duration", options.duration, "Length of the transition in seconds")
        ->check(within(0.001, 3600.0))
        ->capture_default_str();
    command.add_option_function<std::string>(
        "--fps", [&](const std::string& text) { options.fps = parseRate(text); },
        "Frames per second (default: FROM's)");
    command.add_option_function<std::string>(
        "--fit", [&](const std::string& text) { options.fit = parseFit(text); },
        "How an input of another shape fills the picture: contain (default), cover or stretch");
}

template <typename Options>
void addSize(CLI::App& command, Options& options, const std::string& meaning) {
    command.add_option_function<std::string>(
        "--size", [&](const std::string& text) { options.size = parseSize(text); }, meaning);
}

template <typename Options>
void addCommon(CLI::App& command, Options& options) {
    command.add_flag("-f,--force", options.force, "Overwrite OUT if it exists");
    command.add_flag("-q,--quiet", options.quiet, "Say nothing but errors");
    command.add_option("--plugin", options.plugin, "The plug-in to load (default: the installed one)");
}

void addRender(CLI::App& app, RenderOptions& options) {
    CLI::App* const command = app.add_subcommand("render", "Render a transition between two inputs");
    command->footer(
        "FROM and TO are stills, videos, image sequences (img_%04d.png) or generated sources\n"
        "(lavfi:GRAPH, as lavfi:testsrc2=size=640x360:duration=3). OUT is a video (.mp4 .mkv .webm .mov\n"
        ".gif), numbered pictures (frame_%04d.png, .jpg) or, with --at, one picture.");
    addInputs(*command, options);
    command->add_option("-t,--transition", options.transition, "Catalogue name, index, GUID or function name")
        ->required();
    command->add_option("-o,--output", options.output, "What to write: its name says in which form")
        ->required();
    addOverlap(*command, options);
    addSize(*command, options, "WIDTHxHEIGHT of the output (default: FROM's)");
    command
        ->add_option("--hold", options.hold,
                     "Seconds that a still shows before or after (default: 1 in a video, else 0)")
        ->check(within(0.0, 86400.0));
    command->add_option("--at", options.at, "Only the picture at this position, 0 to 1")
        ->check(within(0.0, 1.0));
    command->add_option_function<std::string>(
        "--frames", [&](const std::string& text) { options.frames = parseFrames(text); },
        "Only frames A-B of the output, counted from 0");
    command
        ->add_option_function<std::vector<std::string>>(
            "--encoder-option",
            [&](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) options.encoderOptions.insert(parseSetting(text));
            },
            "KEY=VALUE for a video's encoder, as FFmpeg knows it (crf=23, preset=fast); repeatable")
        ->take_all();
    addCommon(*command, options);
    command->callback([&] { render(options); });
}

/// What the commands that show many transitions have in common.
void addOverview(CLI::App& command, OverviewOptions& options, const std::string& output) {
    addInputs(command, options);
    command.add_option("-o,--output", options.output, output)->required();
    command
        .add_option("-t,--transition", options.transitions,
                    "Only this one, by catalogue name, index, GUID or function name; repeatable")
        ->expected(1)
        ->take_all();
    addOverlap(command, options);
    addCommon(command, options);
}

void addSheet(CLI::App& app, SheetOptions& options) {
    CLI::App* const command =
        app.add_subcommand("sheet", "Draw every transition as a row of thumbnails on one picture");
    command->footer(
        "FROM and TO are what `vantle render` reads. Each frame is drawn as large as FROM and scaled down.\n"
        "N thumbnails show the positions 1/(N+1) to N/(N+1).");
    addOverview(*command, options.overview, "The picture to write (.png, .jpg)");
    addSize(*command, options, "WIDTHxHEIGHT that a thumbnail fits in (default: 160 wide)");
    command->add_option("--columns", options.columns, "Thumbnails per transition")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command
        ->add_option("--abreast", options.abreast, "Transitions side by side (default: 1 per 15 transitions)")
        ->check(CLI::Range(1, 100));
    command->callback([&] { drawSheet(options); });
}

void addGallery(CLI::App& app, GalleryOptions& options) {
    CLI::App* const command =
        app.add_subcommand("gallery", "Make a page to look at every transition in a browser");
    command->footer(
        "FROM and TO are what `vantle render` reads. The page opens from disk, without a server or network.");
    addOverview(*command, options.overview, "The folder to make");
    addSize(*command, options, "WIDTHxHEIGHT of the frames (default: FROM's shape, 480 on its longer side)");
    command
        ->add_option("--positions", options.positions,
                     "Frames per transition, from its start to its end evenly")
        ->check(CLI::Range(2, 1000))
        ->capture_default_str();
    command->callback([&] { makeGallery(options); });
}

// Standard output may be a full disk or a closed pipe, which shows only when its buffer is written out.
void flushOutput() {
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw Error("cannot write to standard output: " + std::generic_category().message(errno));
}

// One line, whatever a library's message holds.
int report(const std::string& message, int status) {
    std::string line = message;
    std::ranges::replace(line, '\n', ' ');
    std::fprintf(stderr, "vantle: %s\n", line.c_str());
    return status;
}

int run(int argc, char** argv) {
    CLI::App app("Video transitions on real pictures and video", "vantle");
    app.require_subcommand(1);
    RenderOptions renderOptions;
    addRender(app, renderOptions);
    SheetOptions sheetOptions;
    addSheet(app, sheetOptions);
    GalleryOptions galleryOptions;
    addGallery(app, galleryOptions);
    bool json = false;
    std::string listedPlugin;
    CLI::App* const listing = app.add_subcommand("list", "List the transitions");
    listing->add_flag("--json", json, "As JSON");
    listing->add_option("--plugin", listedPlugin, "The plug-in to load (default: the installed one)");
    listing->callback([&] { list(listedPlugin, json); });

    try {
        try {
            app.parse(argc, argv);
        } catch (const CLI::Success& help) {
            app.exit(help);
        }
        flushOutput();
        return 0;
    } catch (const CLI::ParseError& error) {
        return report(std::string(error.what()) + " (vantle --help shows the usage)", wrongUsage);
    } catch (const UsageError& error) {
        return report(error.what(), wrongUsage);
    } catch (const std::exception& error) {
        return report(error.what(), failed);
    }
}

}  // namespace

// Only a message that does not fit into memory could still throw, and then there is nothing left to say.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
    av_log_set_level(AV_LOG_QUIET);
    catchInterrupts();
    const int status = run(argc, argv);
    endIfInterrupted();
    return status;
}
