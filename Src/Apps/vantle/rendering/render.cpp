#include "rendering/render.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "Host/error.h"
#include "copying/copy_film.h"
#include "media/demuxer.h"
#include "output/movie_kind.h"
#include "output/picture_writer.h"
#include "output/staged_file.h"
#include "overview/joins.h"
#include "playing/measure_loudness.h"
#include "playing/open_film.h"
#include "rendering/encode_film.h"
#include "rendering/estimate.h"
#include "rendering/plan.h"
#include "system/progress_bar.h"
#include "timeline/chapters.h"

namespace vantle {

namespace {

using Lines = std::vector<std::string>;

void checkRequest(const RenderRequest& request, const OutputKind& kind) {
    const bool onePicture = kind.movie == nullptr && !kind.numbered;
    if (request.at && !onePicture)
        throw UsageError("--at makes one picture, so OUT must be one: a name such as picture.png");
    if (!request.at && onePicture)
        throw UsageError("OUT is one picture: say which with --at (0 to 1), or number them (frame_%04d.png)");
    if (kind.movie == nullptr && !request.encoderOptions.empty())
        throw UsageError("--encoder-option is for a video");
    if (request.at && request.frames) throw UsageError("--at and --frames exclude each other");
    if (request.delivery.output == "-" && isatty(STDOUT_FILENO) == 1)
        throw UsageError(
            "-o - writes a video to standard output, which is a terminal; pipe it into a player");
    // What has no audio is a picture or a moving one, without chapters either.
    if (request.chapters && !kind.holdsAudio)
        throw UsageError("--chapters: OUT holds none; .mp4, .mov, .mkv and .webm do");
    if (!request.film.music.file.empty() && !kind.holdsAudio) throw UsageError("--music: OUT holds no audio");
}

std::string_view endingOf(const std::optional<OutputKind>& kind) {
    return !kind ? ".mp4" : kind->movie != nullptr ? kind->movie->ending : "";
}

/// Whether packets may be copied into such a file, and nothing that is asked for changes them all.
bool mayCopy(const RenderRequest& request, const std::optional<OutputKind>& kind) {
    const std::string_view ending = endingOf(kind);
    const bool holds = ending == ".mp4" || ending == ".mov" || ending == ".mkv";
    if (request.copy) return holds && *request.copy != CopyMode::never;
    return holds && ending != ".mkv" && request.encoders.video.empty() && request.encoderOptions.empty();
}

/// The film as it is to be for what is written, its seed chosen where one is needed.
FilmRequest filmFor(const RenderRequest& request, const std::optional<OutputKind>& kind) {
    FilmRequest film = request.film;
    const bool pictures = kind && kind->movie == nullptr;
    film.evenSize = !pictures && (!kind || kind->evenSize);
    film.drawsEnds = kind && kind->numbered;
    film.isVideo = !pictures;
    film.copies = mayCopy(request, kind);
    // A video shows its stills before and after; of pictures one wants the transition.
    if (!film.hold && pictures) film.hold = Time{0};
    if (std::ranges::find(film.meetings, "random", &Meeting::transition) == film.meetings.end()) return film;
    if (film.seed) return film;
    film.seed = std::random_device()() % 1'000'000;
    if (!request.delivery.quiet)
        std::fprintf(stderr, "vantle: --seed %u chooses the same transitions again\n", *film.seed);
    return film;
}

/// Throws Error when what is written stands in the way, or is an input. Tells of music that cannot be read,
/// too.
void checkTargets(const RenderRequest& request, const OutputKind* kind, const OpenFilm& open) {
    FileSet read = open.files();
    if (const std::string& music = open.film().music.file; !music.empty()) read.merge(Demuxer(music).files());
    std::vector<std::filesystem::path> targets{request.joins.empty() ? request.delivery.output
                                                                     : request.joins};
    if (request.joins.empty() && kind->numbered) {
        const auto [first, end] = wantedFrames(request, open.film());
        targets = pictureNames(request.delivery.output, first, end);
        prepareTargets(targets, request.delivery.force);
    }
    for (const std::filesystem::path& target : targets) checkSpared(read, target);
}

/// How much is to be copied: what was asked for, else as much as can be of what nothing else changes.
CopyMode copyMode(const RenderRequest& request, const std::optional<OutputKind>& kind, const Film& film) {
    const std::string_view ending = endingOf(kind);
    const bool copies = !request.at && !request.frames && request.delivery.output != "-" &&
                        (ending == ".mp4" || ending == ".mov" || ending == ".mkv");
    if (request.copy == CopyMode::always && !copies)
        throw UsageError("--copy always: only whole films are copied, and into .mp4, .mov or .mkv");
    if (!copies || !request.joins.empty()) return CopyMode::never;
    if (request.copy) return *request.copy;
    const auto hasSize = [&](const Source& source) { return source.size == film.canvas.size; };
    const auto hasRate = [&](const Source& source) { return av_cmp_q(source.rate, film.canvas.rate) == 0; };
    const bool asksForSize = request.film.size || request.film.lines > 0;
    const bool changes = (asksForSize && std::ranges::none_of(film.sources, hasSize)) ||
                         (request.film.rate && std::ranges::none_of(film.sources, hasRate));
    return changes || !mayCopy(request, kind) ? CopyMode::never : CopyMode::automatic;
}

void tell(const RenderRequest& request, const std::string& line) {
    if (!request.delivery.quiet) std::fprintf(stderr, "vantle: %s\n", line.c_str());
}

void tellWritten(const RenderRequest& request, const OpenFilm& open, std::int64_t frames,
                 std::int64_t copied) {
    if (request.delivery.quiet) return;
    open.reportDamage();
    const std::string& output = request.delivery.output;
    const Size size = open.film().canvas.size;
    std::fprintf(stderr, "%s: %lld frame%s of %dx%d", output == "-" ? "standard output" : output.c_str(),
                 static_cast<long long>(frames), frames == 1 ? "" : "s", size.width, size.height);
    if (copied > 0) std::fprintf(stderr, ", %lld of them copied", static_cast<long long>(copied));
    std::fputc('\n', stderr);
}

/// Writes the film as planned; false when it did not become what it should be.
bool writeCopies(const RenderRequest& request, const OutputKind& kind, const OpenFilm& open,
                 const CopyPlan& plan) {
    ProgressBar progress(plan.film.frames(), request.delivery.quiet);
    std::string fault;
    try {
        fault = copyFilm(open, plan,
                         {.kind = *kind.movie,
                          .name = request.delivery.output,
                          .overwrite = request.delivery.force,
                          .encoders = request.encoders,
                          .encoderOptions = request.encoderOptions,
                          .chapters = request.chapters ? chaptersOf(plan.film, 0, plan.film.frames())
                                                       : std::vector<Chapter>{},
                          .verifyAll = request.verify},
                         progress);
        if (!fault.empty()) fault.insert(0, "copied, the film is not right: ");
    } catch (const NotCopied& why) {
        fault = std::string("nothing is copied: ") + why.what();
    }
    progress.finish();
    if (fault.empty()) {
        tellWritten(request, open, plan.film.frames(), plan.copied());
        return true;
    }
    if (request.copy == CopyMode::always) throw Error("--copy always: " + fault);
    tell(request, fault + "; all is encoded");
    return false;
}

}  // namespace

void render(const RenderRequest& request) {
    const Delivery& delivery = request.delivery;
    const bool writes = !request.plan && request.joins.empty();
    if (writes && delivery.output.empty()) throw UsageError("-o OUT is missing: what to write");
    std::optional<OutputKind> kind;
    if (!delivery.output.empty()) {
        kind = outputKind(delivery.output, request.encoders);
        checkRequest(request, *kind);
        if (writes && delivery.output != "-" && !kind->numbered)
            prepareTargets(std::array{std::filesystem::path(delivery.output)}, delivery.force);
    }
    if (!request.joins.empty()) checkSheetName(request.joins, delivery.force);

    OpenFilm open = openFilm(filmFor(request, kind), delivery.plugin, delivery.quiet);
    throwComplaints(open.laid.complaints, request.plan);
    if (!request.plan) checkTargets(request, kind ? &*kind : nullptr, open);

    const bool isHeard =
        open.film().audio && !request.at && request.joins.empty() && (!kind || kind->holdsAudio);
    const bool isDucked = !request.film.music.file.empty() && request.film.music.duck && !request.plan;
    if (isHeard && (request.film.level || isDucked))
        measureLoudness(open, request.film.level, delivery.quiet);

    const bool isTurnable = !kind || kind->movie == nullptr || kind->movie->ending != ".mkv";
    const CopyPlan plan = planCopies(open, copyMode(request, kind, open.film()),
                                     {request.encoders.video, request.encoderOptions},
                                     {.audio = request.encoders.audio.empty(), .orientation = isTurnable});
    const Lines lost = losses(plan);
    Lines notes = request.notes;
    notes.insert(notes.end(), lost.begin(), lost.end());
    notes.insert(notes.end(), open.laid.notes.begin(), open.laid.notes.end());
    if (!plan.summary.empty() && (!request.plan || request.json)) notes.push_back(plan.summary);
    if (request.plan) {
        // Without an output it is one as most are.
        const MovieKind* const movie = kind ? kind->movie : movieKind(".mp4");
        return printPlan(plan, movie != nullptr ? estimateOf(request, *movie, open, plan) : std::nullopt,
                         notes, request.json);
    }
    for (const std::string& note : notes) tell(request, note);
    if (!request.joins.empty()) return drawJoins(open, request.joins, delivery.force, delivery.quiet);
    if (plan.copied() > 0) {
        if (writeCopies(request, *kind, open, plan)) return;
        for (const std::string& note : losses({.film = plan.film}))
            if (std::ranges::find(lost, note) == lost.end()) tell(request, note);
    }
    tellWritten(request, open, encodeFilm(request, *kind, open), 0);
}

}  // namespace vantle
