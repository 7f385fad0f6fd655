#include "render_command.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>

#include "Host/plugin.h"
#include "output/writer.h"
#include "system/progress_bar.h"
#include "timeline/painter.h"
#include "timeline/sound.h"

namespace vantle {

namespace {

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

}  // namespace

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

}  // namespace vantle
