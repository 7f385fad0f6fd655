#include "render_command.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/pixdesc.h>
}

#include "Host/plugin.h"
#include "copying/copy_film.h"
#include "copying/copy_plan.h"
#include "copying/stretch_encoder.h"
#include "operands.h"
#include "options.h"
#include "output/picture_writer.h"
#include "output/staged_file.h"
#include "output/writer.h"
#include "overview/joins.h"
#include "plan.h"
#include "system/progress_bar.h"
#include "timeline/lay_out.h"
#include "timeline/painter.h"
#include "timeline/sound.h"

namespace vantle {

namespace {

/// One position of one join.
struct JoinPosition {
    std::optional<std::size_t> join;  ///< counted from 1; the only one when absent
    double position = 0.0;            ///< 0 to 1
};

enum class CopyMode : std::uint8_t { automatic, always, never };

struct RenderOptions {
    JoinOptions join;
    std::vector<std::string> operands;
    std::vector<std::string> transitions;  ///< names, indices, GUIDs or functions, taken in turn
    std::optional<std::uint32_t> seed;
    bool sort = false;
    bool shrink = false;
    bool mute = false;
    MusicOptions music;
    std::optional<int> channels;
    std::optional<Size> size;  ///< the first input's when absent
    std::optional<Time> hold;  ///< that an endless input plays outside its joins
    std::optional<JoinPosition> at;
    std::optional<FrameRange> frames;
    bool plan = false;
    bool json = false;
    std::optional<CopyMode> copy;  ///< what the output and the other options suggest when absent
    bool verify = false;
    std::string joins;  ///< the picture of all joins to write
    EncoderNames encoders;
    av::Options encoderOptions;  ///< for a video's encoder, as FFmpeg knows them
};

void checkOptions(const RenderOptions& options, const OutputKind& kind) {
    const bool onePicture = kind.movie == nullptr && !kind.numbered;
    if (options.at && !onePicture)
        throw UsageError("--at makes one picture, so OUT must be one: a name such as picture.png");
    if (!options.at && onePicture)
        throw UsageError("OUT is one picture: say which with --at (0 to 1), or number them (frame_%04d.png)");
    if (kind.movie == nullptr && !options.encoderOptions.empty())
        throw UsageError("--encoder-option is for a video");
    if (options.at && options.frames) throw UsageError("--at and --frames exclude each other");
    if (options.join.output == "-" && isatty(STDOUT_FILENO) == 1)
        throw UsageError(
            "-o - writes a video to standard output, which is a terminal; pipe it into a player");
    if (!options.music.file.empty() && !kind.holdsSound) throw UsageError("--music: OUT holds no sound");
}

Size canvasSize(const RenderOptions& options, const Input& from, bool even) {
    Size size = options.size.value_or(from.size());
    if (std::max(size.width, size.height) > largestSide)
        throw Error(from.name() + ": its pictures show at " + std::to_string(size.width) + "x" +
                    std::to_string(size.height) + ", and at most " + std::to_string(largestSide) +
                    " each can be rendered; --size makes them smaller");
    const bool odd = size.width % 2 != 0 || size.height % 2 != 0;
    if (even && odd) {
        if (options.size) throw UsageError("--size: this kind of video needs an even width and height");
        size = {std::max(size.width / 2 * 2, 2), std::max(size.height / 2 * 2, 2)};
    }
    return size;
}

int bitsOf(int pixelFormat) {
    const AVPixFmtDescriptor* const pixels = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pixelFormat));
    return pixels != nullptr ? pixels->comp[0].depth : 8;
}

/// What the film loses of its inputs, in a line for each. With copies it has as many bits as these, and those
/// of joins alone are drawn with 8.
std::vector<std::string> losses(const Film& film, const std::optional<CopyPlan>& copies) {
    const int kept = copies ? bitsOf(copies->modelPictures().form->format) : 8;
    const auto isDrawn = [&](std::size_t join) {
        return join < film.joins.size() && film.joins[join].transition != nullptr;
    };
    std::vector<std::string> notes;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Input& input = *film.parts[i].input;
        const auto tell = [&](const std::string& what) {
            const std::string note = input.name() + ": " + what;
            if (std::ranges::find(notes, note) == notes.end()) notes.push_back(note);
        };
        if (!input.leftOut().empty()) tell(input.leftOut());
        const int bits = bitsOf(input.first().format);
        if (isHdr(input.first()))
            tell("its HDR colours are mapped to ordinary ones of 8 bits");
        else if (bits > 8 && !input.still() && (bits > kept || isDrawn(i) || (i > 0 && isDrawn(i - 1))))
            tell("its colours of " + std::to_string(bits) + " bits become ones of 8" +
                 (bits > kept ? "" : " in joins"));
    }
    return notes;
}

/// The sound of the film: the first input's rate, and as many channels as all agree on, else two.
std::optional<SoundWish> soundOf(const RenderOptions& options, const Film& film) {
    std::optional<SoundWish> wish;
    for (const Part& part : film.parts) {
        if (!part.sounds()) continue;
        const Input::Sound& sound = *part.input->sound();
        if (!wish)
            wish = {sound.sampleRate, sound.channels};
        else if (wish->channels != sound.channels)
            wish->channels = 2;
    }
    if (!wish && !options.music.file.empty()) wish = {48000, 2};
    if (!wish) return {};
    wish->channels = options.channels.value_or(wish->channels);
    return wish;
}

/// Draws the wanted frames of a film into a writer, with their sound where it takes any.
class Rendering {
   public:
    /// Of the frames from `first` to before `end`.
    Rendering(const Film& film, std::int64_t first, std::int64_t end, const MusicOptions& music,
              Writer& writer, ProgressBar& progress)
        : writer_(writer),
          progress_(progress),
          next_(first),
          end_(end),
          reader_(film, next_, writer.soundFormat().has_value()),
          painter_(film.canvas.size, writer.pictureFormat()) {
        if (const std::optional<SoundFormat> format = writer.soundFormat())
            sound_.emplace(film, *format, sampleOf(next_, film.canvas.rate, format->sampleRate), music,
                           false);
    }

    void run() {
        for (; next_ < end_; ++next_) {
            writer_.write(painter_.paint(reader_.next()), next_);
            progress_.update(++written_);
            if (sound_) sound_->advance(next_ + 1);
            writeSound();
        }
        if (sound_) sound_->finish();
        writeSound();
    }

   private:
    void writeSound() {
        while (av::Frame samples = sound_ ? sound_->pull() : nullptr) writer_.writeSound(std::move(samples));
    }

    Writer& writer_;
    ProgressBar& progress_;
    std::int64_t next_;
    std::int64_t end_;
    std::int64_t written_ = 0;
    FilmReader reader_;
    Painter painter_;
    std::optional<Soundtrack> sound_;
};

/// The join that `--at` means.
std::size_t joinAt(const JoinPosition& at, const Film& film) {
    const std::size_t count = film.joins.size();
    if (!at.join && count > 1)
        throw UsageError("--at: say which of the " + std::to_string(count) + " joins, as 2:0.5");
    const std::size_t join = at.join.value_or(1);
    if (join < 1 || join > count)
        throw UsageError("--at: the film has " + std::to_string(count) + " join" + (count == 1 ? "" : "s"));
    if (film.joins[join - 1].transition == nullptr) throw UsageError("--at: that join is a cut");
    return join - 1;
}

std::uint32_t seedOf(const RenderOptions& options, const Sequence& sequence) {
    const bool wanted =
        std::ranges::find(sequence.meetings, "random", &Meeting::transition) != sequence.meetings.end();
    if (!wanted) return 0;
    const std::uint32_t seed = options.seed ? *options.seed : std::random_device()() % 1'000'000;
    if (!options.join.quiet)
        std::fprintf(stderr, "vantle: --seed %u chooses the same transitions again\n", seed);
    return seed;
}

/// How much is to be copied: what was asked for, else as much as can be of what nothing else changes.
CopyMode copyMode(const RenderOptions& options, const std::optional<OutputKind>& kind, const Canvas& canvas,
                  std::span<const std::unique_ptr<Input>> inputs) {
    const MovieKind* const movie = kind ? kind->movie : nullptr;
    const std::string_view ending = movie != nullptr ? movie->ending : ".mp4";
    const bool copies = !options.at && !options.frames && options.join.output != "-" &&
                        (!kind || movie != nullptr) &&
                        (ending == ".mp4" || ending == ".mov" || ending == ".mkv");
    if (options.copy == CopyMode::always && !copies)
        throw UsageError("--copy always: only whole films are copied, and into .mp4, .mov or .mkv");
    if (!copies) return CopyMode::never;
    if (options.copy) return *options.copy;
    const bool changes = !options.encoders.video.empty() || !options.encoderOptions.empty() ||
                         (options.size && *options.size != inputs.front()->size()) ||
                         (options.join.fps && av_cmp_q(canvas.rate, commonRate(inputs)) != 0);
    return changes || ending == ".mkv" ? CopyMode::never : CopyMode::automatic;
}

/// What is copied of the film; none when nothing is. `notes` gets a line about what is not.
std::optional<CopyPlan> planCopies(const RenderOptions& options, CopyMode mode, const Film& film,
                                   std::vector<std::string>& notes) {
    if (mode == CopyMode::never) return {};
    CopyPlan plan =
        planCopy(film, {soundOf(options, film), options.music.file.empty() && options.encoders.sound.empty()},
                 [&](const CopyPlan& tried) {
                     tryEncoding(tried, {options.encoders.video, options.encoderOptions});
                 });
    // Below a tenth it saves next to nothing, and all else would have to be like what is copied.
    const bool few = mode == CopyMode::automatic && plan.copied() > 0 && plan.copied() < film.frames() / 10;
    const bool none = few || plan.copied() == 0;
    if (few)
        plan.refusals = {std::to_string(plan.copied()) + " of " + std::to_string(film.frames()) +
                         " frames are too few"};
    else if (none && plan.refusals.empty())
        plan.refusals.emplace_back("all frames lie in joins");
    if (!plan.refusals.empty()) {
        if (mode == CopyMode::always) throw Error("--copy always: " + plan.refusals.front());
        const std::size_t others = plan.refusals.size() - 1;
        notes.push_back((none ? "nothing is copied: " : "not copied: ") + plan.refusals.front() +
                        (others > 0 ? "; nor are " + std::to_string(others) + " more" : ""));
    }
    return none ? std::nullopt : std::optional(std::move(plan));
}

void tellWritten(const std::string& output, std::int64_t frames, Size size, std::int64_t copied) {
    std::fprintf(stderr, "%s: %lld frame%s of %dx%d", output == "-" ? "standard output" : output.c_str(),
                 static_cast<long long>(frames), frames == 1 ? "" : "s", size.width, size.height);
    if (copied > 0) std::fprintf(stderr, ", %lld of them copied", static_cast<long long>(copied));
    std::fputc('\n', stderr);
}

/// Writes the film as planned; false when it did not become what it should be.
bool writeCopies(const RenderOptions& options, const OutputKind& kind, const CopyPlan& plan,
                 std::span<const std::unique_ptr<Input>> inputs) {
    const JoinOptions& asked = options.join;
    ProgressBar progress(plan.film.frames(), asked.quiet);
    std::string fault;
    try {
        fault = copyFilm(plan,
                         {.kind = *kind.movie,
                          .name = asked.output,
                          .overwrite = asked.force,
                          .encoders = options.encoders,
                          .encoderOptions = options.encoderOptions,
                          .sound = kind.holdsSound ? soundOf(options, plan.film) : std::nullopt,
                          .music = options.music,
                          .verifyAll = options.verify},
                         progress);
        if (!fault.empty()) fault.insert(0, "copied, the film is not right: ");
    } catch (const NotCopied& why) {
        fault = std::string("nothing is copied: ") + why.what();
    }
    progress.finish();
    if (fault.empty()) {
        if (asked.quiet) return true;
        reportDamage(inputs);
        tellWritten(asked.output, plan.film.frames(), plan.film.canvas.size, plan.copied());
        return true;
    }
    if (options.copy == CopyMode::always) throw Error("--copy always: " + fault);
    if (!asked.quiet) std::fprintf(stderr, "vantle: %s; all is encoded\n", fault.c_str());
    return false;
}

/// The frames that are wanted of a film, to before the second.
std::pair<std::int64_t, std::int64_t> wantedFrames(const RenderOptions& options, const Film& film) {
    const FrameRange wanted = options.frames.value_or(FrameRange{});
    if (wanted.first >= film.frames())
        throw Error("--frames: the rendering ends before its frame " + std::to_string(wanted.first));
    return {wanted.first, std::min(film.frames() - 1, wanted.last) + 1};
}

void writeFilm(const RenderOptions& options, const OutputKind& kind, const Film& film,
               std::span<const std::unique_ptr<Input>> inputs) {
    const JoinOptions& asked = options.join;
    const auto [first, end] = wantedFrames(options, film);
    const std::int64_t frames = options.at ? 1 : end - first;
    const std::unique_ptr<Writer> writer =
        makeWriter(kind, {.name = asked.output,
                          .canvas = film.canvas,
                          .colours = &inputs.front()->first(),
                          .sound = kind.holdsSound ? soundOf(options, film) : std::nullopt,
                          .overwrite = asked.force,
                          .encoders = options.encoders,
                          .encoderOptions = options.encoderOptions});
    ProgressBar progress(frames, asked.quiet);
    if (options.at) {
        const std::size_t join = joinAt(*options.at, film);
        Painter painter(film.canvas.size, writer->pictureFormat());
        writer->write(painter.paint(momentsOf(film, join, {options.at->position}).front()), 0);
    } else {
        Rendering(film, first, end, options.music, *writer, progress).run();
    }
    writer->finish();
    progress.finish();
    if (asked.quiet) return;
    reportDamage(inputs);
    tellWritten(asked.output, frames, film.canvas.size, 0);
}

/// Throws Error when what is written stands in the way, or is an input. Tells of music that cannot be read,
/// too.
void checkTargets(const RenderOptions& options, const OutputKind* kind, const Film& film,
                  std::span<const std::unique_ptr<Input>> inputs) {
    FileSet read = filesOf(inputs);
    if (!options.music.file.empty()) read.merge(Demuxer(options.music.file).files());
    std::vector<std::filesystem::path> targets{options.joins.empty() ? options.join.output : options.joins};
    if (options.joins.empty() && kind->numbered) {
        const auto [first, end] = wantedFrames(options, film);
        targets = pictureNames(options.join.output, first, end);
        prepareTargets(targets, options.join.force);
    }
    for (const std::filesystem::path& target : targets) checkSpared(read, target);
}

void render(const RenderOptions& options) {
    const JoinOptions& asked = options.join;
    const bool writes = !options.plan && options.joins.empty();
    if (writes && asked.output.empty()) throw UsageError("-o OUT is missing: what to write");
    std::optional<OutputKind> kind;
    if (!asked.output.empty()) {
        kind = outputKind(asked.output, options.encoders);
        checkOptions(options, *kind);
        if (writes && asked.output != "-" && !kind->numbered)
            prepareTargets(std::array{std::filesystem::path(asked.output)}, asked.force);
    }
    if (!options.joins.empty()) checkSheetName(options.joins, asked.force);

    Sequence sequence = parseOperands(options.operands, options.transitions);
    if (options.sort) sortNaturally(sequence, options.operands);
    if (options.mute)
        for (Shot& shot : sequence.shots) shot.mute = true;
    const Plugin plugin(asked.plugin);
    const auto transitions = transitionsFor(sequence, plugin, seedOf(options, sequence));

    const auto inputs = openInputs(sequence, asked.quiet);
    const bool numbered = kind && kind->numbered;
    const bool pictures = kind && kind->movie == nullptr;
    const Canvas canvas{canvasSize(options, *inputs.front(), !pictures && (!kind || kind->evenSize)),
                        asked.fps.value_or(commonRate(inputs)), asked.fit};
    std::vector<std::string> notes;
    // A video shows its stills before and after; of pictures one wants the transition.
    const Film film = layOut(
        sequence, inputs, transitions, canvas,
        {asked.duration, options.hold.value_or(Time{pictures ? 0.0 : 1.0, false}), options.shrink, numbered},
        notes);
    if (!options.plan) checkTargets(options, kind ? &*kind : nullptr, film, inputs);
    const CopyMode mode = copyMode(options, kind, canvas, inputs);
    const std::optional<CopyPlan> copies =
        options.joins.empty() ? planCopies(options, mode, film, notes) : std::nullopt;
    const std::vector<std::string> lost = losses(film, copies);
    notes.insert(notes.begin(), lost.begin(), lost.end());
    if (options.plan) {
        printPlan(film, copies ? copies->stretches : std::vector<Stretch>{}, notes, options.json);
        return;
    }
    if (!asked.quiet)
        for (const std::string& note : notes) std::fprintf(stderr, "vantle: %s\n", note.c_str());
    if (!options.joins.empty()) {
        drawJoins(film, options.joins, asked.force, asked.quiet);
        return;
    }
    if (copies) {
        if (writeCopies(options, *kind, *copies, inputs)) return;
        for (const std::string& note : losses(film, {}))
            if (!asked.quiet && std::ranges::find(lost, note) == lost.end())
                std::fprintf(stderr, "vantle: %s\n", note.c_str());
    }
    writeFilm(options, *kind, film, inputs);
}

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
    // Positions in the sound are counted from these: far beyond any video is far enough.
    constexpr std::int64_t farthest = FrameRange{}.last;
    return {std::min(*first, farthest), std::min(*last, farthest)};
}

}  // namespace

void addRenderCommand(CLI::App& app) {
    const auto held = std::make_shared<RenderOptions>();
    RenderOptions& options = *held;
    CLI::App* const command = app.add_subcommand("render", "Render a film of inputs and transitions");
    command->footer(
        "IN is a still, a video, an image sequence (img_%04d.png) or a generated source (lavfi:GRAPH, as\n"
        "lavfi:testsrc2=size=640x360:duration=3). `+NAME` between two inputs says how they meet: a "
        "transition,\n"
        "`random` or `cut`. `key=value` belongs to what stands before it: in, out, hold, fit and mute to an\n"
        "input, duration to a transition. A file of such a name is written ./+x or ./in=2. Times are "
        "seconds\n"
        "(2.5), 1:02.5, 500ms or frames of the film (12f). OUT is a video (.mp4 .mkv .webm .mov .gif .webp,\n"
        "or - for standard output), numbered pictures (frame_%04d.png, .jpg) or, with --at, one picture.");
    command->add_option("IN", options.operands, "Two inputs or more, and how they meet")
        ->type_name("FILE|+TRANSITION|+random|+cut")
        ->required();
    command
        ->add_option("-t,--transition", options.transitions,
                     "Catalogue name, index, GUID or function name, random or cut; several are taken in turn")
        ->type_name("TRANSITION|random|cut")
        ->expected(1)
        ->take_all();
    command->add_option("-o,--output", options.join.output, "What to write: its name says in which form")
        ->type_name("FILE");
    addOverlap(*command, options.join);
    addSize(*command, options.size, "WIDTHxHEIGHT of the output (default: the first input's)");
    command
        ->add_option_function<std::string>(
            "--hold", [&](const std::string& text) { options.hold = timeOf(text); },
            "How long a still shows outside its transitions (default: 1 in a video, else 0)")
        ->type_name("TIME")
        ->check(CLI::Validator(
            [](const std::string& text) {
                return parseTime(text) ? std::string() : "\"" + text + "\" is no time (as 2.5 or 12f)";
            },
            ""));
    command->add_option("--seed", options.seed, "What -t random follows from (default: another each time)");
    command
        ->add_option_function<std::string>(
            "--sort", [&](const std::string&) { options.sort = true; },
            "natural: inputs in the order in which one counts, img2 before img10")
        ->type_name("natural")
        ->check(CLI::IsMember({"natural"}));
    command->add_flag("--shrink", options.shrink, "Shorten transitions that are too long for their inputs");
    command->add_flag("--mute", options.mute, "Leave out the sound of all inputs");
    command
        ->add_option("--music", options.music.file,
                     "Sound under the film, repeated when shorter, faded out over its last two seconds")
        ->type_name("FILE");
    command->add_option("--music-volume", options.music.volume, "How loud it is")
        ->check(within(0.0, 1.0))
        ->capture_default_str();
    command->add_flag("--music-duck", options.music.duck, "Lower it where inputs have sound");
    command
        ->add_option("--channels", options.channels,
                     "Channels of the sound (default: those of the inputs where they agree, else 2)")
        ->check(CLI::Range(1, 8));
    command->add_flag("--plan", options.plan, "Only tell what the film will be, frame by frame");
    command->add_flag("--json", options.json, "With --plan: tell it as JSON")->needs("--plan");
    command
        ->add_option_function<std::string>(
            "--copy", [&](const std::string& text) { options.copy = parseCopy(text); },
            "Copy packets where nothing changes: auto, always (or fail) or never (default: auto in .mp4 and "
            ".mov)")
        ->type_name("auto|always|never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
    command->add_flag("--verify", options.verify, "Compare all frames that were copied with their sources");
    command->add_option("--joins", options.joins, "Only draw all transitions on one picture of this name")
        ->type_name("FILE");
    command->add_option_function<std::string>(
        "--at", [&](const std::string& text) { options.at = parseAt(text); },
        "Only the picture at this position of the transition, 0 to 1; of several, 2:0.5 is in the second");
    command->add_option_function<std::string>(
        "--frames", [&](const std::string& text) { options.frames = parseFrames(text); },
        "Only frames A-B of the output, counted from 0");
    command->add_option("--encoder", options.encoders.video,
                        "FFmpeg's encoder for the pictures of a video (libx265, libsvtav1, prores_ks, ffv1)");
    command->add_option("--sound-encoder", options.encoders.sound, "FFmpeg's encoder for its sound (flac)");
    command
        ->add_option_function<std::vector<std::string>>(
            "--encoder-option",
            [&](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) {
                    const auto [key, value] = parseSetting(text);
                    options.encoderOptions.insert_or_assign(key, value);
                }
            },
            "KEY=VALUE for a video's encoder, as FFmpeg knows it (crf=23, preset=fast); repeatable")
        ->take_all();
    addCommon(*command, options.join);
    command->callback([held] { render(*held); });
}

}  // namespace vantle
