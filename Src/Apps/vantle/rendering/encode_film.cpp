#include "rendering/encode_film.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "Host/error.h"
#include "playing/audio_mix.h"
#include "playing/film_reader.h"
#include "playing/painter.h"
#include "system/progress_bar.h"
#include "timeline/time.h"

namespace vantle {

namespace {

/// Draws frames of a film into a writer, with their audio where it takes any.
class Rendering {
   public:
    /// Of the frames from `first` to before `end`.
    Rendering(const OpenFilm& open, std::int64_t first, std::int64_t end, Writer& writer,
              ProgressBar& progress)
        : writer_(writer),
          progress_(progress),
          next_(first),
          end_(end),
          reader_(open, next_, writer.audioFormat().has_value()),
          painter_(open.film().canvas.size, writer.pictureFormat()) {
        if (const std::optional<AudioFormat> format = writer.audioFormat())
            audio_.emplace(open, *format, sampleOf(next_, open.film().canvas.rate, format->sampleRate),
                           false);
    }

    void run() {
        for (; next_ < end_; ++next_) {
            writer_.write(painter_.paint(reader_.next()), next_);
            progress_.update(++written_);
            if (audio_) audio_->advance(next_ + 1);
            writeAudio();
        }
        if (audio_) audio_->finish();
        writeAudio();
    }

   private:
    void writeAudio() {
        while (av::Frame samples = audio_ ? audio_->pull() : nullptr) writer_.writeAudio(std::move(samples));
    }

    Writer& writer_;
    ProgressBar& progress_;
    std::int64_t next_;
    std::int64_t end_;
    std::int64_t written_ = 0;
    FilmReader reader_;
    Painter painter_;
    std::optional<AudioMix> audio_;
};

/// The join that `--at` means.
std::size_t joinAt(const JoinPosition& at, const Film& film) {
    const std::size_t count = film.joins.size();
    if (!at.join && count > 1)
        throw UsageError("--at: say which of the " + std::to_string(count) + " joins, as 2:0.5");
    const std::size_t join = at.join.value_or(1);
    if (join < 1 || join > count)
        throw UsageError("--at: the film has " + std::to_string(count) + " join" + (count == 1 ? "" : "s"));
    if (!film.joins[join - 1].transition) throw UsageError("--at: that join is a cut");
    return join - 1;
}

}  // namespace

std::pair<std::int64_t, std::int64_t> wantedFrames(const RenderRequest& request, const Film& film) {
    const FrameRange wanted = request.frames.value_or(FrameRange{});
    if (wanted.first >= film.frames())
        throw Error("--frames: the rendering ends before its frame " + std::to_string(wanted.first));
    return {wanted.first, std::min(film.frames() - 1, wanted.last) + 1};
}

std::int64_t encodeFilm(const RenderRequest& request, const OutputKind& kind, const OpenFilm& open) {
    const Film& film = open.film();
    const auto [first, end] = wantedFrames(request, film);
    const std::int64_t frames = request.at ? 1 : end - first;
    const std::unique_ptr<Writer> writer =
        makeWriter(kind, {.name = request.delivery.output,
                          .canvas = film.canvas,
                          .colours = &open.inputs.front()->first(),
                          .audio = kind.holdsAudio ? film.audio : std::nullopt,
                          .overwrite = request.delivery.force,
                          .encoders = request.encoders,
                          .encoderOptions = request.encoderOptions});
    ProgressBar progress(frames, request.delivery.quiet);
    if (request.at) {
        const std::size_t join = joinAt(*request.at, film);
        Painter painter(film.canvas.size, writer->pictureFormat());
        writer->write(painter.paint(momentsOf(open, join, {request.at->position}).front()), 0);
    } else {
        Rendering(open, first, end, *writer, progress).run();
    }
    writer->finish();
    progress.finish();
    return frames;
}

}  // namespace vantle
