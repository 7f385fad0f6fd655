#include "playing/audio_mix.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantle {

namespace {

/// Audio is mixed in single precision, plane by plane.
AudioFormat mixed(AudioFormat format) {
    format.sampleFormat = AV_SAMPLE_FMT_FLTP;
    return format;
}

float* channel(AVFrame& audio, int number) { return reinterpret_cast<float*>(audio.extended_data[number]); }

}  // namespace

AudioMix::AudioMix(const OpenFilm& open, const AudioFormat& format, std::int64_t first, bool alone,
                   std::vector<std::int64_t> delays)
    : open_(open),
      film_(open.film()),
      delays_(std::move(delays)),
      format_(mixed(format)),
      frameSamples_(format.frameSamples),
      alone_(alone),
      musicGain_(film_, format.sampleRate),
      filmGain_(film_, format.sampleRate),
      limiter_(format_),
      output_(*silence(format_, 1), {1, format.sampleRate}, {toFormat(format)}),
      begin_(first),
      next_(begin_) {
    if (film_.music.file.empty()) return;
    music_.emplace(film_.music, film_.canvas.rate, format_);
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
    av::Frame mix = silence(format_, static_cast<int>(end - next_));
    for (std::size_t number = 0; number < film_.parts.size(); ++number) {
        const Part& part = film_.parts[number];
        if (part.audible && sample(part.start) < end && sample(part.end()) > next_) addPart(*mix, number);
    }
    players_.remove_if([&](const Player& player) { return sample(film_.parts[player.part].end()) <= end; });
    if (music_) addMusic(*mix);
    fade(*mix);
    mix->pts = next_ - begin_;
    next_ = end;
    limiter_.push(std::move(mix));
    passOn();
}

void AudioMix::passOn() {
    while (av::Frame limited = limiter_.pull()) output_.push(std::move(limited));
}

void AudioMix::finish() {
    limiter_.close();
    passOn();
    output_.close(next_ - begin_);
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
    const PartGain partGain(film_, number, format_.sampleRate);
    for (std::int64_t at = begin; at < end; ++at) {
        const float gain = partGain.at(at);
        for (int i = 0; i < format_.channels; ++i)
            channel(mix, i)[at - next_] += channel(*audio, i)[at - begin] * gain;
    }
}

void AudioMix::addMusic(AVFrame& mix) {
    const av::Frame audio = music_->read(mix.nb_samples);
    for (int i = 0; i < mix.nb_samples; ++i) {
        const float gain = musicGain_.at(next_ + i);
        for (int number = 0; number < format_.channels; ++number)
            channel(mix, number)[i] += channel(*audio, number)[i] * gain;
    }
}

void AudioMix::fade(AVFrame& mix) const {
    for (int i = 0; i < mix.nb_samples; ++i)
        if (const float gain = filmGain_.at(next_ + i); gain < 1.0F)
            for (int number = 0; number < format_.channels; ++number) channel(mix, number)[i] *= gain;
}

av::Frame AudioMix::pull() { return frameSamples_ > 0 ? output_.pullSamples(frameSamples_) : output_.pull(); }

}  // namespace vantle
