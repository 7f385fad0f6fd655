#include "playing/audio_mix.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

namespace vantle {

namespace {

/// Audio is mixed in single precision, plane by plane.
AudioFormat mixed(AudioFormat format) {
    format.sampleFormat = AV_SAMPLE_FMT_FLTP;
    return format;
}

float* channel(AVFrame& audio, int number) { return reinterpret_cast<float*>(audio.extended_data[number]); }

/// 0 before `start`, 1 after `length` more samples, a straight line between.
float ramp(std::int64_t at, std::int64_t start, std::int64_t length) {
    if (length <= 0) return at >= start ? 1.0F : 0.0F;
    return std::clamp(static_cast<float>(at - start) / static_cast<float>(length), 0.0F, 1.0F);
}

}  // namespace

std::unique_ptr<Demuxer> AudioMix::Player::audioOf(const Input& input, std::int64_t first, int sampleRate) {
    const int stream = input.source().audio->stream;
    auto demuxer = std::make_unique<Demuxer>(input.name());
    // Beside the pictures, though they are not wanted: of audio alone a long pause might look like a jump in
    // time.
    demuxer->use(stream);
    // A decoder needs a run-up.
    const std::int64_t time = std::max<std::int64_t>(first - sampleRate, 0);
    if (!demuxer->seek(stream, av_rescale_q(time, {1, sampleRate}, demuxer->stream(stream).time_base)))
        demuxer->reopen();
    return demuxer;
}

AudioMix::AudioMix(const OpenFilm& open, const AudioFormat& format, std::int64_t first, bool alone,
                   std::vector<std::int64_t> delays)
    : open_(open),
      film_(open.film()),
      delays_(std::move(delays)),
      format_(mixed(format)),
      frameSamples_(format.frameSamples),
      alone_(alone),
      output_(*silence(format_, 1), {1, format.sampleRate}, {toFormat(format)}),
      begin_(first),
      next_(begin_) {
    if (film_.music.file.empty()) return;
    music_.emplace(film_.music.file, format_);
    // The music has run on under what is not wanted.
    constexpr std::int64_t portion = 1 << 16;
    for (std::int64_t left = begin_; left > 0; left -= portion)
        music_->read(static_cast<int>(std::min(left, portion)));
}

std::int64_t AudioMix::sample(std::int64_t frame) const {
    return sampleOf(frame, film_.canvas.rate, format_.sampleRate);
}

void AudioMix::advance(std::int64_t frame) {
    const std::int64_t end = sample(frame);
    if (end <= next_) return;
    const av::Frame mix = silence(format_, static_cast<int>(end - next_));
    for (std::size_t number = 0; number < film_.parts.size(); ++number) {
        const Part& part = film_.parts[number];
        if (part.audible && sample(part.start) < end && sample(part.end()) > next_) addPart(*mix, number);
    }
    players_.remove_if([&](const Player& player) { return sample(film_.parts[player.part].end()) <= end; });
    if (music_) addMusic(*mix);
    for (int number = 0; number < format_.channels; ++number)
        for (float& value : std::span(channel(*mix, number), static_cast<std::size_t>(mix->nb_samples)))
            value = std::clamp(value, -1.0F, 1.0F);
    mix->pts = next_ - begin_;
    next_ = end;
    output_.push(av::share(*mix));
}

void AudioMix::addPart(AVFrame& mix, std::size_t number) {
    const Part& part = film_.parts[number];
    // What of the part lies in these samples.
    const std::int64_t begin = std::max(sample(part.start), next_);
    const std::int64_t end = std::min(sample(part.end()), next_ + mix.nb_samples);
    auto player = std::ranges::find(players_, number, &Player::part);
    if (player == players_.end()) {
        // Counted from the input's own first picture, so that its audio lies with its pictures.
        const std::int64_t first = film_.sourceOf(part).startSample(format_.sampleRate) + sample(part.first) -
                                   (delays_.empty() ? 0 : delays_[number]);
        players_.emplace_back(number, open_.inputOf(part), format_, first + begin - sample(part.start),
                              alone_);
        player = std::prev(players_.end());
    }
    const av::Frame audio = player->reader.read(static_cast<int>(end - begin));
    // How loud it is rises over the join before it, and falls over the one after it.
    struct Slope {
        std::int64_t start;
        std::int64_t length;
    };
    const auto slopeOf = [&](std::size_t join) {
        const std::int64_t start = sample(film_.joins[join].start);
        return Slope{start, sample(film_.joins[join].end()) - start};
    };
    std::optional<Slope> rise;
    std::optional<Slope> fall;
    if (number > 0 && film_.parts[number - 1].audible) rise = slopeOf(number - 1);
    if (number < film_.joins.size() && film_.parts[number + 1].audible) fall = slopeOf(number);
    for (std::int64_t at = begin; at < end; ++at) {
        const float gain = (rise ? ramp(at, rise->start, rise->length) : 1.0F) *
                           (fall ? 1.0F - ramp(at, fall->start, fall->length) : 1.0F);
        for (int i = 0; i < format_.channels; ++i)
            channel(mix, i)[at - next_] += channel(*audio, i)[at - begin] * gain;
    }
}

void AudioMix::addMusic(AVFrame& mix) {
    constexpr float ducked = 0.25F;  // 12 decibels less
    const std::int64_t slope = format_.sampleRate / 2;
    const std::int64_t fade = 2 * std::int64_t{format_.sampleRate};
    const std::int64_t filmEnd = sample(film_.frames());
    const std::int64_t end = next_ + mix.nb_samples;
    std::vector<std::pair<std::int64_t, std::int64_t>> louder;  // where inputs have audio, near here
    for (const Part& part : film_.parts)
        if (film_.music.duck && part.audible && sample(part.start) - slope < end &&
            sample(part.end()) + slope > next_)
            louder.emplace_back(sample(part.start), sample(part.end()));
    const av::Frame audio = music_->read(mix.nb_samples);
    for (int i = 0; i < mix.nb_samples; ++i) {
        const std::int64_t at = next_ + i;
        float gain = static_cast<float>(film_.music.volume) * (1.0F - ramp(at, filmEnd - fade, fade));
        // Down by the time a part with audio begins, and up again only after its end.
        float down = 0.0F;
        for (const auto& [start, stop] : louder)
            down = std::max(down, std::min(ramp(at, start - slope, slope), 1.0F - ramp(at, stop, slope)));
        gain *= 1.0F - (1.0F - ducked) * down;
        for (int number = 0; number < format_.channels; ++number)
            channel(mix, number)[i] += channel(*audio, number)[i] * gain;
    }
}

av::Frame AudioMix::pull() { return frameSamples_ > 0 ? output_.pullSamples(frameSamples_) : output_.pull(); }

}  // namespace vantle
