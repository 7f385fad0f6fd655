#include "rendering/encode_film.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Host/error.h"
#include "media/packet_source.h"
#include "output/movie_file.h"
#include "output/picture_writer.h"
#include "playing/film_player.h"
#include "rendering/film_palette.h"
#include "system/progress_bar.h"
#include "timeline/chapters.h"

namespace vantle {

namespace {

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

void writePictures(const RenderRequest& request, const OpenFilm& open, std::int64_t first, std::int64_t end,
                   ProgressBar& progress) {
    const Delivery& delivery = request.delivery;
    const Size size = open.film().canvas.size;
    PictureWriter writer(delivery.output, size, delivery.force);
    if (request.at) {
        const std::size_t join = joinAt(*request.at, open.film());
        writer.write(
            Painter(size, writer.format()).paint(momentsOf(open, join, {request.at->position}).front()), 0);
    } else {
        FilmPlayer player(open, first, end, writer.format(), {});
        for (std::int64_t frame = first; av::Frame picture = player.picture(); ++frame) {
            writer.write(std::move(picture), frame);
            progress.update(frame - first + 1);
        }
    }
    writer.finish();
}

void writeMovie(const RenderRequest& request, const MovieKind& kind, const OpenFilm& open, std::int64_t first,
                std::int64_t end, ProgressBar& progress) {
    const Film& film = open.film();
    MovieFile file(kind, request.delivery.output, request.delivery.force);
    std::unique_ptr<Encoder> video =
        makeVideoEncoder(kind, request.encoders, film.canvas, film.sources.front().colours,
                         request.encoderOptions, file.wantsGlobalHeaders());
    std::unique_ptr<Encoder> audio;
    if (film.audio && kind.audioEncoder != nullptr)
        audio = makeAudioEncoder(kind, request.encoders, *film.audio, 0, file.wantsGlobalHeaders());
    std::optional<Palettized> palette;
    if (video->context().pix_fmt == AV_PIX_FMT_PAL8) palette.emplace(paletteFor(open, first, end));
    FilmPlayer player(open, first, end, palette ? Palettized::format : pictureFormatOf(video->context()),
                      audio ? std::optional(audioFormatOf(audio->context())) : std::nullopt);
    EncodedPackets pictures(std::move(video),
                            [&] { return palette ? palette->reduced(player.picture()) : player.picture(); });
    std::optional<EncodedPackets> samples;
    if (audio) samples.emplace(std::move(audio), [&] { return player.audio(); });
    file.describe(film.tags, request.chapters ? chaptersOf(film, first, end) : std::vector<Chapter>{},
                  film.canvas.rate);
    file.write(pictures, samples ? &*samples : nullptr, muxerOptions(kind),
               [&](std::int64_t count) { progress.update(count); });
    file.commit();
}

}  // namespace

std::pair<std::int64_t, std::int64_t> wantedFrames(const RenderRequest& request, const Film& film) {
    const FrameRange wanted = request.frames.value_or(FrameRange{});
    if (wanted.first >= film.frames())
        throw Error("--frames: the rendering ends before its frame " + std::to_string(wanted.first));
    return {wanted.first, std::min(film.frames() - 1, wanted.last) + 1};
}

std::int64_t encodeFilm(const RenderRequest& request, const OutputKind& kind, const OpenFilm& open) {
    const auto [first, end] = wantedFrames(request, open.film());
    const std::int64_t frames = request.at ? 1 : end - first;
    ProgressBar progress(frames, request.delivery.quiet);
    if (kind.movie != nullptr)
        writeMovie(request, *kind.movie, open, first, end, progress);
    else
        writePictures(request, open, first, end, progress);
    progress.finish();
    return frames;
}

}  // namespace vantle
