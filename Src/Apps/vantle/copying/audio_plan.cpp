#include "copying/audio_plan.h"

#include <algorithm>
#include <limits>

#include "timeline/time.h"

namespace vantle {

namespace {

/// The nearest multiple of an AAC frame.
std::int64_t aacFrameAt(std::int64_t sample) {
    return av_rescale_rnd(sample, 1, CodedAudio::frameSamples, AV_ROUND_NEAR_INF);
}

}  // namespace

AudioPlan planAudio(const Film& film, const std::vector<std::shared_ptr<const CodedAudio>>& audio) {
    AudioPlan plan;
    plan.delays.assign(film.parts.size(), 0);
    const int rate = film.audio->sampleRate;
    const auto sample = [&](std::int64_t frame) { return sampleOf(frame, film.canvas.rate, rate); };
    constexpr std::int64_t fewest = 16;
    // .mp4 and .mov say to a thousandth of a second where audio ends: an AAC frame heard for less would be
    // cut off.
    const std::int64_t end =
        av_rescale_rnd(sample(film.frames()) - rate / 1000, 1, CodedAudio::frameSamples, AV_ROUND_UP);
    std::vector<AudioStretch>& stretches = plan.stretches;
    std::int64_t next = -1;
    const auto encodeTo = [&](std::int64_t aacFrame) {
        if (aacFrame > next) stretches.push_back({next, aacFrame - next});
        next = aacFrame;
    };
    for (std::size_t number = 0; number < film.parts.size(); ++number) {
        const Part& part = film.parts[number];
        if (!audio[number]) continue;
        const CodedAudio& coded = *audio[number];
        // Its packets keep their distance from each other, so that all are shifted alike, by half an AAC
        // frame at most.
        const std::int64_t shown = film.sourceOf(part).startSample(rate) + sample(part.first);
        const std::int64_t meant = sample(part.start) + coded.first - shown;
        const std::int64_t first = aacFrameAt(meant);
        plan.delays[number] = first * CodedAudio::frameSamples - meant;
        // It fades over its joins, also beside one that is silent, and with the film.
        std::int64_t cleanFrom =
            number == 0 ? -CodedAudio::frameSamples : sample(film.joins[number - 1].end());
        if (film.fadeIn > 0) cleanFrom = std::max(cleanFrom, sample(film.fadeIn));
        std::int64_t cleanTo = number == film.joins.size() ? std::numeric_limits<std::int64_t>::max() / 2
                                                           : sample(film.joins[number].start);
        if (film.fadeOut > 0) cleanTo = std::min(cleanTo, sample(film.frames() - film.fadeOut));
        const std::int64_t from =
            std::max({av_rescale_rnd(cleanFrom, 1, CodedAudio::frameSamples, AV_ROUND_UP), first, next});
        const std::int64_t to =
            std::min({av_rescale_rnd(cleanTo, 1, CodedAudio::frameSamples, AV_ROUND_DOWN) - 1,
                      first + coded.packets, end});
        if (to - from < fewest) continue;
        encodeTo(from);
        stretches.push_back({from, to - from, number, from - first});
        next = to;
    }
    encodeTo(end);
    return plan;
}

}  // namespace vantle
