#include "playing/measure_loudness.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <vector>

#include "media/audio_format.h"
#include "media/filters.h"
#include "playing/audio_source.h"
#include "system/progress_bar.h"
#include "system/workers.h"
#include "timeline/loudness.h"

namespace vantle {

namespace {

/// Of the next `samples` samples of a reader of audio in this format.
template <typename Reader>
Loudness loudnessOf(Reader& reader, std::int64_t samples, const AudioFormat& format) {
    // Messages of the filter are for those who look for faults in it.
    Filters meter(*silence(format, 1), {1, format.sampleRate},
                  {{"ebur128", {{"metadata", "1"}, {"framelog", "48"}}}});
    Loudness loudness;
    const auto read = [&] {
        while (const av::Frame measured = meter.pull()) {
            const auto value = [&](const char* key) {
                const AVDictionaryEntry* const entry = av_dict_get(measured->metadata, key, nullptr, 0);
                const double number = entry != nullptr ? std::strtod(entry->value, nullptr) : 0.0;
                return number > Loudness::silence && number < 100.0 ? number : Loudness::silence;
            };
            if (measured->nb_samples < format.sampleRate / 10) continue;
            loudness.integrated = value("lavfi.r128.I");
            loudness.momentary.push_back(value("lavfi.r128.M"));
        }
    };
    for (std::int64_t at = 0; at < samples;) {
        av::Frame audio =
            reader.read(static_cast<int>(std::min<std::int64_t>(format.sampleRate, samples - at)));
        audio->pts = at;
        at += audio->nb_samples;
        meter.push(std::move(audio));
        read();
    }
    meter.close(AV_NOPTS_VALUE);
    read();
    // Before there are 400 ms the filter tells of none.
    constexpr std::size_t firstTold = 3;
    std::vector<double>& momentary = loudness.momentary;
    if (momentary.size() > firstTold) std::fill_n(momentary.begin(), firstTold, momentary[firstTold]);
    return loudness;
}

}  // namespace

void measureLoudness(OpenFilm& open, bool level, bool quiet) {
    Film& film = open.laid.film;
    const AudioFormat format{.sampleRate = film.audio->sampleRate,
                             .sampleFormat = AV_SAMPLE_FMT_FLTP,
                             .channels = film.audio->channels};
    const auto sample = [&](std::int64_t frame) {
        return sampleOf(frame, film.canvas.rate, format.sampleRate);
    };
    std::vector<std::optional<Loudness>> measured(film.parts.size());
    std::optional<Loudness> music;
    ProgressBar progress(std::ssize(film.parts), quiet, "measured input");
    std::mutex guard;
    std::int64_t done = 0;
    // The music, the longest of all, comes first.
    inParallel(film.parts.size() + 1, [&](std::size_t job) {
        if (job == 0) {
            if (!level || film.music.file.empty()) return;
            MusicReader reader(film.music, film.canvas.rate, format);
            music = loudnessOf(reader, sample(film.frames()), format);
            return;
        }
        const Part& part = film.parts[job - 1];
        if (part.audible) {
            const Source& source = film.sourceOf(part);
            const std::int64_t first = source.startSample(format.sampleRate) + sample(part.first);
            const auto input = audioFrom(source, first, format.sampleRate);
            AudioReader reader(*input, source.audio->stream, format, first);
            measured[job - 1] = loudnessOf(reader, sample(part.frames), format);
        }
        const std::scoped_lock lock(guard);
        progress.update(++done);
    });
    for (std::size_t i = 0; level && i < film.parts.size(); ++i) {
        if (!measured[i]) continue;
        film.parts[i].volume *= factorToLevel(*measured[i]);
        if (measured[i]->integrated + Loudness::mostRaised < Loudness::wanted)
            open.laid.notes.push_back(film.sourceOf(film.parts[i]).name +
                                      ": is nearly silent, and stays quieter than the others");
    }
    if (music) film.music.volume *= factorToLevel(*music);
    if (!film.music.file.empty() && film.music.duck) film.loud = loudSpans(film, measured);
}

}  // namespace vantle
