#include "render_command.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <span>

#include "Host/plugin.h"
#include "output/writer.h"
#include "system/progress_bar.h"
#include "timeline/clip.h"
#include "timeline/join.h"
#include "timeline/soundtrack.h"

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

Size canvasSize(const RenderOptions& options, const Clip& from, bool even) {
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

/// Number of frames that the output will have, as far as the inputs state their lengths.
std::optional<std::int64_t> expectedFrames(const Clip& from, const Clip& to, const Canvas& canvas,
                                           std::int64_t overlap, std::int64_t hold, FrameRange wanted) {
    std::int64_t total = -overlap;
    for (const Clip* clip : {&from, &to}) {
        const std::optional<double> seconds = clip->statedSeconds();
        if (!clip->endless() && !seconds) return {};
        total += clip->endless() ? overlap + hold : std::llround(*seconds * av_q2d(canvas.rate));
    }
    return std::max<std::int64_t>(std::min(total - 1, wanted.last) - wanted.first + 1, 0);
}

}  // namespace

void render(const RenderOptions& options) {
    const OutputKind kind = outputKind(options.output);
    checkOptions(options, kind);
    const Plugin plugin(options.plugin);
    const Transition& transition = plugin.find(options.transition);
    if (transition.draw == nullptr)
        throw Error("the plug-in lists \"" + transition.name + "\" but does not have it yet");

    Clip from(options.from);
    Clip to(options.to);
    Canvas canvas;
    canvas.rate = options.fps.value_or(commonRate(from, to));
    canvas.size = canvasSize(options, from, kind.evenSize);
    canvas.fit = options.fit;
    const double rate = av_q2d(canvas.rate);
    const std::int64_t overlap = std::llround(options.duration * rate);
    if (overlap < 1) throw UsageError("--duration: shorter than one frame");
    // A video shows its stills before and after; of pictures one wants the transition.
    const std::int64_t hold = std::llround(options.hold.value_or(kind.movie != nullptr ? 1.0 : 0.0) * rate);

    std::string fromSound;
    std::string toSound;
    WriterOptions writerOptions{options.output,        canvas, &from.first(), {}, options.force,
                                options.encoderOptions};
    if (kind.holdsSound) {
        for (const auto& [input, sound] : {std::pair{&options.from, &fromSound}, {&options.to, &toSound}})
            if (const std::optional<int> sampleRate = soundSampleRate(*input)) {
                *sound = *input;
                if (!writerOptions.soundSampleRate) writerOptions.soundSampleRate = sampleRate;
            }
    }
    const std::unique_ptr<Writer> writer = makeWriter(kind, writerOptions);

    const FrameRange wanted = options.frames.value_or(FrameRange{});
    std::optional<Soundtrack> sound;
    if (const std::optional<SoundFormat> format = writer->soundFormat())
        sound.emplace(fromSound, toSound, *format, canvas.rate, overlap, wanted.first, wanted.last);

    ProgressBar progress(options.at ? 1 : expectedFrames(from, to, canvas, overlap, hold, wanted),
                         options.quiet);
    const auto limit = [&](const Clip& clip, std::int64_t outside) {
        return clip.endless() ? std::optional(overlap + outside) : std::nullopt;
    };
    Renderer renderer(transition.draw, canvas.size, *writer, sound ? &*sound : nullptr, wanted, progress);
    if (options.at) {
        for (const Meeting& meeting : meetingsAt(from, to, canvas, overlap, std::span(&*options.at, 1)))
            renderer.mix(*meeting.from, *meeting.to, meeting.frame, static_cast<double>(overlap));
    } else {
        from.start(canvas, limit(from, hold));
        to.start(canvas, limit(to, kind.numbered ? std::max<std::int64_t>(hold, 1) : hold));
        join(from, to, canvas, {overlap, kind.numbered}, renderer, sound ? &*sound : nullptr);
    }
    if (renderer.written() == 0)
        throw Error("--frames: the rendering ends before its frame " + std::to_string(wanted.first));
    if (sound) {
        sound->finish();
        while (av::Frame samples = sound->pull()) writer->writeSound(std::move(samples));
    }
    writer->finish();
    progress.finish();
    if (!options.quiet)
        std::fprintf(stderr, "%s: %lld frame%s of %dx%d\n", options.output.c_str(),
                     static_cast<long long>(renderer.written()), renderer.written() == 1 ? "" : "s",
                     canvas.size.width, canvas.size.height);
}

}  // namespace vantle
