#include "copying/copy_film.h"

#include <cstdint>
#include <iterator>
#include <memory>

#include "copying/film_audio.h"
#include "copying/film_pictures.h"
#include "copying/verification.h"
#include "output/movie_file.h"

namespace vantle {

namespace {

/// As other films are written, but with room reserved for the moov box instead of faststart's second pass.
av::Options fileOptions(const CopyPlan& plan, const MovieKind& kind, std::int64_t chapters) {
    av::Options wanted = muxerOptions(kind);
    if (wanted.erase("movflags") == 0) return wanted;
    // More than the tables take for a picture and for a packet of audio, of the shortest that there are.
    constexpr std::int64_t perPicture = 64;
    constexpr std::int64_t perPacket = 48;
    constexpr std::int64_t perChapter = 512;
    constexpr std::int64_t shortest = 64;  // samples
    const std::int64_t frames = plan.film.frames();
    const std::int64_t packets =
        !plan.film.audio ? 0
        : plan.audioPlan.stretches.empty()
            ? sampleOf(frames, plan.film.canvas.rate, plan.film.audio->sampleRate) / shortest
            : plan.audioPlan.stretches.back().end();
    wanted["moov_size"] = std::to_string(65536 + perPicture * std::ssize(plan.shown.pictures) +
                                         perPacket * packets + perChapter * chapters);
    return wanted;
}

}  // namespace

std::string copyFilm(const OpenFilm& open, const CopyPlan& plan, const CopyOptions& options,
                     ProgressBar& progress) {
    MovieFile file(options.kind, options.name, options.overwrite);
    // They are opened again where they are wanted, two at a time.
    for (const std::unique_ptr<Input>& input : open.inputs) input->close();
    FilmPictures pictures(open, plan, {options.encoders.video, options.encoderOptions}, options.verifyAll);
    std::unique_ptr<PacketSource> audio;
    const auto makeEncoder = [&](std::int64_t bitRate) {
        return makeAudioEncoder(options.kind, options.encoders, *plan.film.audio, bitRate,
                                file.wantsGlobalHeaders());
    };
    if (!plan.audioPlan.stretches.empty())
        audio =
            std::make_unique<FilmAudio>(open, plan, [&] { return makeEncoder(plan.modelAudio().bit_rate); });
    else if (plan.film.audio)
        audio = encodedAudio(open, makeEncoder(0));
    file.describe(plan.film.tags, options.chapters, plan.film.canvas.rate);
    file.write(pictures, audio.get(), fileOptions(plan, options.kind, std::ssize(options.chapters)),
               [&](std::int64_t written) { progress.update(written); });
    std::string fault = faultOf(file.path(), plan, pictures.drawn(), options.verifyAll);
    if (fault.empty()) file.commit();
    return fault;
}

}  // namespace vantle
