#include "render_command.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "Host/plugin.h"
#include "options.h"
#include "output/writer.h"
#include "system/progress_bar.h"
#include "timeline/painter.h"
#include "timeline/sound.h"

namespace vantle {

namespace {

struct RenderOptions {
    JoinOptions join;
    std::string transition;      ///< name, index, GUID or function
    std::optional<Size> size;    ///< FROM's when absent
    std::optional<double> hold;  ///< seconds that an endless input plays outside the overlap
    std::optional<double> at;    ///< only the picture at this position, 0 to 1
    std::optional<FrameRange> frames;
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

/// Draws the wanted frames of a film into a writer, with their sound where it takes any.
class Rendering {
   public:
    Rendering(const Film& film, FrameRange wanted, Writer& writer, ProgressBar& progress)
        : writer_(writer),
          progress_(progress),
          next_(wanted.first),
          end_(std::min(film.frames() - 1, wanted.last) + 1),
          reader_(film, next_, writer.soundFormat().has_value()),
          painter_(film.canvas.size, writer.pictureFormat()) {
        if (const std::optional<SoundFormat> format = writer.soundFormat())
            sound_.emplace(film, *format, next_);
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

void render(const RenderOptions& options) {
    const JoinOptions& asked = options.join;
    const OutputKind kind = outputKind(asked.output);
    checkOptions(options, kind);
    const Plugin plugin(asked.plugin);
    const Transition& transition = plugin.find(options.transition);
    if (transition.draw == nullptr)
        throw Error("the plug-in lists \"" + transition.name + "\" but does not have it yet");

    Input from(asked.from);
    Input to(asked.to);
    Canvas canvas;
    canvas.rate = asked.fps.value_or(commonRate(from, to));
    canvas.size = canvasSize(options, from, kind.evenSize);
    canvas.fit = asked.fit;
    const std::int64_t overlap = asked.overlap(canvas.rate);
    // A video shows its stills before and after; of pictures one wants the transition.
    const std::int64_t hold =
        std::llround(options.hold.value_or(kind.movie != nullptr ? 1.0 : 0.0) * av_q2d(canvas.rate));
    WriterOptions writerOptions{asked.output, canvas, &from.first(), {}, asked.force, options.encoderOptions};
    if (kind.holdsSound)
        for (const Input* input : {&to, &from})
            if (input->soundStream()) writerOptions.soundSampleRate = input->soundSampleRate();
    // What may not be written is refused before anything long begins.
    const std::unique_ptr<Writer> writer = makeWriter(kind, writerOptions);

    const Film film = joined(from, to, canvas, transition.draw, overlap, hold, kind.numbered);
    const FrameRange wanted = options.frames.value_or(FrameRange{});
    const std::int64_t frames = options.at ? 1 : std::min(film.frames() - 1, wanted.last) - wanted.first + 1;
    if (frames < 1)
        throw Error("--frames: the rendering ends before its frame " + std::to_string(wanted.first));
    ProgressBar progress(frames, asked.quiet);
    if (options.at) {
        Painter painter(canvas.size, writer->pictureFormat());
        writer->write(painter.paint(momentsOf(film, 0, {*options.at}).front()), 0);
    } else {
        Rendering(film, wanted, *writer, progress).run();
    }
    writer->finish();
    progress.finish();
    if (asked.quiet) return;
    for (const Input* input : {&from, &to})
        if (const std::string report = input->damageReport(); !report.empty())
            std::fprintf(stderr, "vantle: %s\n", report.c_str());
    std::fprintf(stderr, "%s: %lld frame%s of %dx%d\n", asked.output.c_str(), static_cast<long long>(frames),
                 frames == 1 ? "" : "s", canvas.size.width, canvas.size.height);
}

// Functions that CLI11 calls with an option's text; what they throw becomes a line of "wrong usage".

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

}  // namespace

void addRenderCommand(CLI::App& app) {
    const auto held = std::make_shared<RenderOptions>();
    RenderOptions& options = *held;
    CLI::App* const command = app.add_subcommand("render", "Render a transition between two inputs");
    command->footer(
        "FROM and TO are stills, videos, image sequences (img_%04d.png) or generated sources\n"
        "(lavfi:GRAPH, as lavfi:testsrc2=size=640x360:duration=3). OUT is a video (.mp4 .mkv .webm .mov\n"
        ".gif), numbered pictures (frame_%04d.png, .jpg) or, with --at, one picture.");
    addInputs(*command, options.join);
    command->add_option("-t,--transition", options.transition, "Catalogue name, index, GUID or function name")
        ->required();
    command->add_option("-o,--output", options.join.output, "What to write: its name says in which form")
        ->required();
    addOverlap(*command, options.join);
    addSize(*command, options.size, "WIDTHxHEIGHT of the output (default: FROM's)");
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
