#include "rendering/estimate.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>
#include <vector>

#include "media/packet_source.h"
#include "playing/film_player.h"
#include "rendering/encode_film.h"
#include "rendering/film_palette.h"

namespace vantle {

namespace {

/// Frames from the first to before the second.
using Span = std::pair<std::int64_t, std::int64_t>;

std::vector<Span> encodedSpans(const RenderRequest& request, const Film& film, const CopyPlan& plan) {
    if (plan.stretches.empty()) return {wantedFrames(request, film)};
    std::vector<Span> spans;
    for (const Stretch& stretch : plan.stretches)
        if (!stretch.part) spans.emplace_back(stretch.first, stretch.end());
    return spans;
}

/// What encoding a few frames took.
struct Trial {
    std::int64_t frames = 0;
    double seconds = 0.0;
    std::int64_t keyframes = 0;
    std::int64_t keyframeBytes = 0;
    std::int64_t others = 0;
    std::int64_t otherBytes = 0;
};

Trial tryEncodingOf(const RenderRequest& request, const MovieKind& kind, const OpenFilm& open, Span span) {
    const Film& film = open.film();
    std::unique_ptr<Encoder> encoder = makeVideoEncoder(
        kind, request.encoders, film.canvas, film.sources.front().colours, request.encoderOptions, false);
    std::optional<Palettized> palette;
    if (encoder->context().pix_fmt == AV_PIX_FMT_PAL8)
        palette.emplace(paletteFor(open, span.first, span.second));
    FilmPlayer player(open, span.first, span.second,
                      palette ? Palettized::format : pictureFormatOf(encoder->context()), {});
    av::Frame first = player.picture();  // finding the place is no part of it
    const auto began = std::chrono::steady_clock::now();
    EncodedPackets packets(std::move(encoder), [&] {
        av::Frame picture = first ? std::move(first) : player.picture();
        return palette ? palette->reduced(std::move(picture)) : std::move(picture);
    });
    Trial trial{.frames = span.second - span.first};
    while (const av::Packet packet = packets.next()) {
        const bool isKey = trial.keyframes == 0 || (packet->flags & AV_PKT_FLAG_KEY) != 0;
        ++(isKey ? trial.keyframes : trial.others);
        (isKey ? trial.keyframeBytes : trial.otherBytes) += packet->size;
    }
    trial.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    return trial;
}

/// A frame near this one that can be shown at once: of a clip the one with the keyframe before it.
std::int64_t cheapNear(const OpenFilm& open, std::int64_t frame) {
    const Film& film = open.film();
    const auto part = std::ranges::find_if(film.parts, [&](const Part& each) { return each.holds(frame); });
    if (!film.sourceOf(*part).isClip()) return frame;
    Input& input = open.inputOf(*part);
    input.start(frame - part->offset(), film.canvas.rate, false);
    const av::Frame picture = input.nextPicture();
    if (!picture) return frame;
    const std::int64_t near = input.gridNumber(picture->pts, film.canvas.rate) + part->offset();
    return part->holds(near) ? near : frame;
}

/// What is copied: as much of each file as is shown of it.
double copiedBytes(const CopyPlan& plan) {
    const Film& film = plan.film;
    double bytes = 0.0;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Source& source = film.sourceOf(film.parts[i]);
        std::error_code unknown;
        const auto size = std::filesystem::file_size(source.name, unknown);
        if (!unknown && source.isClip())
            bytes += static_cast<double>(size) * static_cast<double>(plan.copiedOf(i)) /
                     static_cast<double>(source.frames(film.canvas.rate));
    }
    return bytes;
}

}  // namespace

std::optional<Estimate> estimateOf(const RenderRequest& request, const MovieKind& kind, const OpenFilm& open,
                                   const CopyPlan& plan) {
    constexpr std::int64_t few = 3;
    constexpr std::int64_t enough = 24;
    constexpr double patience = 0.5;  // seconds
    const Film& film = open.film();
    std::vector<Span> spans = encodedSpans(request, film, plan);
    std::int64_t frames = 0;
    for (const auto& [first, end] : spans) frames += end - first;
    if (frames == 0) return {};

    // In the longest stretch: a few show how many more there is time for.
    const Span place =
        *std::ranges::max_element(spans, {}, [](const Span& span) { return span.second - span.first; });
    const std::int64_t room = place.second - place.first;
    const auto tried = [&](std::int64_t part, std::int64_t count) {
        count = std::min(count, room);
        const std::int64_t near = cheapNear(open, place.first + room * part / 3);
        const std::int64_t first = std::min(near, film.frames() - count);
        return tryEncodingOf(request, kind, open, {first, first + count});
    };
    Trial trial = tried(1, few);
    double each = trial.seconds / static_cast<double>(trial.frames);
    if (const auto more = static_cast<std::int64_t>(patience / each); more > few) {
        const Trial longer = tried(2, std::min(more, enough));
        each = longer.seconds / static_cast<double>(longer.frames);
        trial.frames += longer.frames;
        trial.keyframes += longer.keyframes;
        trial.keyframeBytes += longer.keyframeBytes;
        trial.others += longer.others;
        trial.otherBytes += longer.otherBytes;
    }

    // Encoders set a keyframe at least that often, unless all pictures are, or lie in one packet.
    constexpr std::int64_t usualInterval = 250;
    const auto all = static_cast<double>(frames);
    const double keyframes = std::min(all, all / usualInterval + static_cast<double>(spans.size()));
    double bytes = copiedBytes(plan);
    if (trial.others == 0)
        bytes += all * static_cast<double>(trial.keyframeBytes) / static_cast<double>(trial.frames);
    else
        bytes +=
            keyframes * static_cast<double>(trial.keyframeBytes) / static_cast<double>(trial.keyframes) +
            (all - keyframes) * static_cast<double>(trial.otherBytes) / static_cast<double>(trial.others);
    if (film.audio && kind.audioEncoder != nullptr)
        bytes += static_cast<double>(
                     makeAudioEncoder(kind, request.encoders, *film.audio, 0, false)->context().bit_rate) /
                 8.0 * all / av_q2d(film.canvas.rate);
    return Estimate{all * each, static_cast<std::int64_t>(bytes), trial.frames};
}

}  // namespace vantle
