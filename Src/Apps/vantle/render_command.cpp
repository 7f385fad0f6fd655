#include "render_command.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Host/error.h"
#include "options.h"
#include "reading/bare_names.h"
#include "reading/date_order.h"
#include "reading/operands.h"
#include "rendering/render.h"

namespace vantle {

namespace {

// Functions that CLI11 calls with an option's text; what they throw becomes a line of "wrong usage".

std::pair<std::string, std::string> parseSetting(const std::string& text) {
    const std::size_t middle = text.find('=');
    if (middle == std::string::npos || middle == 0)
        throw CLI::ValidationError("--encoder-option", "\"" + text + "\" is not KEY=VALUE");
    return {text.substr(0, middle), text.substr(middle + 1)};
}

/// The number that all of a text is, in plain digits.
template <typename Number>
std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

JoinPosition parseAt(const std::string& text) {
    const std::size_t colon = text.find(':');
    const bool saysJoin = colon != std::string::npos;
    const auto join = numberIn<std::size_t>(std::string_view(text).substr(0, saysJoin ? colon : 0));
    const auto position = numberIn<double>(std::string_view(text).substr(saysJoin ? colon + 1 : 0));
    if ((saysJoin && !join) || !position || !(*position >= 0.0 && *position <= 1.0))
        throw CLI::ValidationError("--at", "\"" + text + "\" is no position of 0 to 1 (as 0.5, or 2:0.5)");
    return {join, *position};
}

CopyMode parseCopy(const std::string& text) {
    return text == "always" ? CopyMode::always : text == "never" ? CopyMode::never : CopyMode::automatic;
}

FrameRange parseFrames(const std::string& text) {
    const std::size_t middle = text.find('-', 1);
    const auto first = numberIn<std::int64_t>(std::string_view(text).substr(0, middle));
    const auto last = numberIn<std::int64_t>(
        std::string_view(text).substr(middle == std::string::npos ? text.size() : middle + 1));
    if (!first || !last || *first < 0 || *last < *first)
        throw CLI::ValidationError("--frames", "\"" + text + "\" is no range of frames (as 10-19)");
    // Positions in the audio are counted from these: far beyond any video is far enough.
    constexpr std::int64_t farthest = FrameRange{}.last;
    return {std::min(*first, farthest), std::min(*last, farthest)};
}

CLI::Validator aVolume() {
    return {[](const std::string& text) {
                return parseVolume(text)
                           ? std::string()
                           : "\"" + text + "\" is no volume (as 0.5 or -6dB, at most 10 or 20dB)";
            },
            ""};
}

/// What the command line is, read but for its operands.
struct RenderOptions {
    RenderRequest request;
    std::vector<std::string> operands;
    std::vector<std::string> transitions;  ///< names, indices, GUIDs or functions, taken in turn
    std::string sort{};                    ///< natural or date; empty when inputs stay in their order
};

/// Takes from the operands what belongs to the music because it stands behind it, and not behind an input.
void takeMusicsOperands(RenderOptions& options, const CLI::App& command) {
    Music& music = options.request.film.music;
    std::vector<std::string> others;
    auto operand = options.operands.begin();
    bool behindMusic = false;
    std::string option;  // the one that stands right before
    for (const CLI::Option* const given : command.parse_order()) {
        if (!given->get_positional()) {
            option = given->get_name();
            behindMusic = behindMusic || option == "--music";
            continue;
        }
        const std::string& text = *operand++;
        if (std::exchange(option, "") == "--music-duck" && (text == "yes" || text == "no")) {
            music.duck = text == "yes";
        } else if (behindMusic && isSetting(text)) {
            if (text.starts_with("volume=") && command.count("--music-volume") > 0)
                throw UsageError(text + " and --music-volume exclude each other");
            setMusic(music, text);
        } else {
            others.push_back(text);
            behindMusic = false;
        }
    }
    options.operands = std::move(others);
}

void run(RenderOptions options, const CLI::App& command) {
    FilmRequest& film = options.request.film;
    takeMusicsOperands(options, command);
    refuseBareNames(options.operands, options.transitions, Plugin(options.request.delivery.plugin).joins());
    options.request.notes = parseOperands(film, options.operands, options.transitions);
    if (options.sort == "natural") sortNaturally(film, options.operands);
    if (options.sort == "date")
        for (const std::string& note : sortByDate(film, options.operands))
            options.request.notes.push_back(note);
    render(options.request);
}

}  // namespace

void addRenderCommand(CLI::App& app) {
    const auto held = std::make_shared<RenderOptions>();
    RenderOptions& options = *held;
    RenderRequest& request = options.request;
    CLI::App* const command = app.add_subcommand("render", "Render a film of inputs and transitions");
    command->footer(
        "IN is a still, a video, an image sequence (img_%04d.png) or a generated source (lavfi:GRAPH, as\n"
        "lavfi:testsrc2=size=640x360:duration=3). `+NAME` between two inputs says how they meet: a "
        "transition,\n"
        "a fade, `random` or `cut`; else -t does, or they fade.\n"
        "`key=value` belongs to what stands before it: in, out, hold, fit, turn, flip, motion, mute and "
        "volume\n"
        "to an input, duration to a transition, in, out and volume to --music FILE. A file of such a name "
        "is\n"
        "written ./+x or ./in=2. Times are seconds (2.5), 1:02.5, 500ms or frames of the film (12f). OUT is "
        "a\n"
        "video (.mp4 .mkv .webm .mov .gif .webp, or - for standard output), numbered pictures\n"
        "(frame_%04d.png, .jpg) or, with --at, one picture.");
    command->add_option("IN", options.operands, "Two inputs or more, and how they meet")
        ->type_name("FILE|+TRANSITION|+fade|+fade-black|+fade-white|+random|+cut")
        ->required();
    command
        ->add_option(
            "-t,--transition", options.transitions,
            "Catalogue name, index, GUID or function name, a fade, random or cut; several are taken in turn "
            "(default: fade)")
        ->type_name("TRANSITION|fade|fade-black|fade-white|random|cut")
        ->allow_extra_args(false)
        ->take_all();
    command->add_option("-o,--output", request.delivery.output, "What to write: its name says in which form")
        ->type_name("FILE");
    addOverlap(*command, request.film);
    addFilmSize(*command, request.film);
    command
        ->add_option_function<std::string>(
            "--hold", [&](const std::string& text) { request.film.hold = timeOf(text); },
            "How long a still shows outside its transitions (default: 1 in a video, else 0)")
        ->type_name("TIME")
        ->check(CLI::Validator(
            [](const std::string& text) {
                return parseTime(text) ? std::string() : "\"" + text + "\" is no time (as 2.5 or 12f)";
            },
            ""));
    const auto addFade = [&](const std::string& name, std::optional<Time>& fade, const std::string& meaning) {
        command
            ->add_option_function<std::string>(
                name, [&fade](const std::string& text) { fade = timeOf(text); }, meaning)
            ->type_name("TIME")
            ->check(aTime(3600.0));
    };
    addFade("--fade-in", request.film.fadeIn,
            "How long the whole film takes to fade in from black and silence");
    addFade("--fade-out", request.film.fadeOut, "How long it takes to fade out to black and silence");
    command->add_option("--seed", request.film.seed,
                        "What -t random (default: another each time) and --motion (default: 0) follow from");
    command
        ->add_option("--sort", options.sort,
                     "Inputs in another order. natural: as one counts, img2 before img10; date: as they were "
                     "taken")
        ->type_name("natural|date")
        ->check(CLI::IsMember({"natural", "date"}));
    command->add_flag("--shrink", request.film.shrink,
                      "Shorten transitions that are too long for their inputs");
    command->add_flag("--motion", request.film.motion,
                      "Move slowly over stills, closer, farther or along, as --seed chooses");
    command->add_flag("--mute", request.film.mute, "Leave out the audio of all inputs");
    command
        ->add_option(
            "--music", request.film.music.file,
            "Audio under the film, repeated when shorter, faded out over its last two seconds; in=, out= and "
            "volume= may follow")
        ->type_name("FILE");
    command
        ->add_option_function<std::string>(
            "--music-volume",
            [&](const std::string& text) { request.film.music.volume = parseVolume(text).value_or(1.0); },
            "How loud it is: a factor, or decibels as -6dB (default: 1)")
        ->type_name("VOLUME")
        ->check(aVolume())
        ->needs("--music");
    command
        ->add_flag("--music-duck", request.film.music.duck,
                   "Lower it where inputs are loud: yes or no may follow (default: yes)")
        ->needs("--music");
    command
        ->add_option_function<std::string>(
            "--audio-curve",
            [&](const std::string& text) {
                request.film.fadeCurve = parseFadeCurve(text).value_or(FadeCurve::qsin);
            },
            "How audio fades over a join, by FFmpeg's names (default: qsin, which keeps the power; tri is a "
            "straight line)")
        ->type_name("qsin|tri|hsin|squ|exp|log")
        ->check(CLI::IsMember({"qsin", "tri", "hsin", "squ", "exp", "log"}));
    command->add_flag("--level", request.film.level,
                      "Bring inputs and music to one loudness, -16 LUFS as EBU R128 measures it");
    command
        ->add_option("--channels", request.film.channels,
                     "Channels of the audio (default: those of the inputs where they agree, else 2)")
        ->check(CLI::Range(1, 8));
    command->add_flag("--plan", request.plan, "Only tell what the film will be, frame by frame");
    command->add_flag("--json", request.json, "With --plan: tell it as JSON")->needs("--plan");
    command
        ->add_option_function<std::string>(
            "--copy", [&](const std::string& text) { request.copy = parseCopy(text); },
            "Copy packets where nothing changes: auto, always (or fail) or never (default: auto in .mp4 and "
            ".mov)")
        ->type_name("auto|always|never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    command->add_flag("--verify", request.verify, "Compare all frames that were copied with their sources");
    command->add_flag("--chapters", request.chapters, "A chapter for each input, with its file's name");
    command->add_option("--joins", request.joins, "Only draw all transitions on one picture of this name")
        ->type_name("FILE");
    command->add_option_function<std::string>(
        "--at", [&](const std::string& text) { request.at = parseAt(text); },
        "Only the picture at this position of the transition, 0 to 1; of several, 2:0.5 is in the second");
    command->add_option_function<std::string>(
        "--frames", [&](const std::string& text) { request.frames = parseFrames(text); },
        "Only frames A-B of the output, counted from 0");
    command->add_option("--encoder", request.encoders.video,
                        "FFmpeg's encoder for the pictures of a video (libx265, libsvtav1, prores_ks, ffv1)");
    command->add_option("--audio-encoder,--sound-encoder", request.encoders.audio,
                        "FFmpeg's encoder for its audio (flac)");
    command
        ->add_option_function<std::vector<std::string>>(
            "--encoder-option",
            [&](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) {
                    const auto [key, value] = parseSetting(text);
                    request.encoderOptions.insert_or_assign(key, value);
                }
            },
            "KEY=VALUE for a video's encoder, as FFmpeg knows it (crf=23, preset=fast); repeatable")
        ->allow_extra_args(false)
        ->take_all();
    addCommon(*command, request.delivery);
    command->callback([held, command] { run(*held, *command); });
}

}  // namespace vantle
