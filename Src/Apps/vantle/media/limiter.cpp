#include "media/limiter.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <utility>

namespace vantle {

namespace {

constexpr int oversampling = 4;  // as meters of true peaks do it

// The limiter hears the peaks in one channel, and in another what it makes of this tells its gain.
constexpr double probe = 1.0 / 1024;
constexpr int peakAndProbe = 2;

AudioFormat formatOfGains(const AudioFormat& format) {
    return {.sampleRate = format.sampleRate, .sampleFormat = AV_SAMPLE_FMT_DBL, .channels = peakAndProbe};
}

std::span<float> plane(const AVFrame& audio, int channel) {
    return {reinterpret_cast<float*>(audio.extended_data[channel]),
            static_cast<std::size_t>(audio.nb_samples)};
}

std::span<double> interleaved(const AVFrame& gains) {
    return {reinterpret_cast<double*>(gains.extended_data[0]),
            static_cast<std::size_t>(gains.nb_samples) * peakAndProbe};
}

}  // namespace

Limiter::Limiter(const AudioFormat& format)
    : format_(format),
      oversampled_(*silence(format_, 1), {1, format_.sampleRate},
                   {{"aresample", {{"osr", std::to_string(oversampling * format_.sampleRate)}}}}),
      // The limit is -1.05 dB: a gain that changes between two samples moves a peak a little.
      gains_(*silence(formatOfGains(format_), 1), {1, format_.sampleRate},
             {{"alimiter",
               {{"limit", "0.886"}, {"attack", "5"}, {"release", "100"}, {"level", "0"}, {"latency", "1"}}},
              {"aformat", {{"sample_fmts", "dbl"}}}}) {}

void Limiter::push(av::Frame audio) {
    const std::size_t before = samplePeaks_.size();
    samplePeaks_.resize(before + static_cast<std::size_t>(audio->nb_samples), 0.0F);
    for (int channel = 0; channel < format_.channels; ++channel)
        for (auto peak = samplePeaks_.begin() + static_cast<std::ptrdiff_t>(before);
             const float value : plane(*audio, channel)) {
            *peak = std::max(*peak, std::abs(value));
            ++peak;
        }
    oversampled_.push(av::share(*audio));
    waiting_.push_back(std::move(audio));
    readPeaks();
    // The last of them may still grow.
    pushPeaks(std::min(samplePeaks_.size(), truePeaks_.size() - (truePeaks_.empty() ? 0 : 1)));
}

void Limiter::close() {
    oversampled_.close(AV_NOPTS_VALUE);
    readPeaks();
    truePeaks_.resize(samplePeaks_.size(), 0.0F);
    pushPeaks(samplePeaks_.size());
    gains_.close(AV_NOPTS_VALUE);
    while (const av::Frame gains = gains_.pull()) apply(*gains);
    while (!waiting_.empty()) finishFront();
}

av::Frame Limiter::pull() {
    if (ready_.empty()) return nullptr;
    av::Frame audio = std::move(ready_.front());
    ready_.pop_front();
    return audio;
}

void Limiter::readPeaks() {
    while (const av::Frame audio = oversampled_.pull())
        for (std::size_t i = 0; i < static_cast<std::size_t>(audio->nb_samples); ++i) {
            float peak = 0.0F;
            for (int channel = 0; channel < format_.channels; ++channel)
                peak = std::max(peak, std::abs(plane(*audio, channel)[i]));
            if (subsample_ == 0) truePeaks_.push_back(0.0F);
            truePeaks_.back() = std::max(truePeaks_.back(), peak);
            subsample_ = (subsample_ + 1) % oversampling;
        }
}

/// Asks for the gain of the next samples, each of which answers for the peaks on both its sides.
void Limiter::pushPeaks(std::size_t samples) {
    if (samples == 0) return;
    av::Frame peaks = silence(formatOfGains(format_), static_cast<int>(samples));
    for (std::size_t i = 0; i < samples; ++i) {
        interleaved(*peaks)[peakAndProbe * i] = std::max({samplePeaks_[i], truePeaks_[i], lastPeak_});
        interleaved(*peaks)[peakAndProbe * i + 1] = probe;
        lastPeak_ = truePeaks_[i];
    }
    const auto count = static_cast<std::ptrdiff_t>(samples);
    samplePeaks_.erase(samplePeaks_.begin(), samplePeaks_.begin() + count);
    truePeaks_.erase(truePeaks_.begin(), truePeaks_.begin() + count);
    peaks->pts = asked_;
    asked_ += count;
    gains_.push(std::move(peaks));
    while (const av::Frame gains = gains_.pull()) apply(*gains);
}

void Limiter::apply(const AVFrame& gains) {
    const std::span<const double> values = interleaved(gains);
    for (std::size_t i = 1; i < values.size() && !waiting_.empty(); i += peakAndProbe) {
        AVFrame& audio = *waiting_.front();
        if (const auto gain = static_cast<float>(values[i] / probe); gain < 1.0F) {
            av::check(av_frame_make_writable(&audio), "audio");
            for (int channel = 0; channel < format_.channels; ++channel)
                plane(audio, channel)[static_cast<std::size_t>(limited_)] *= gain;
        }
        if (++limited_ == audio.nb_samples) finishFront();
    }
}

void Limiter::finishFront() {
    ready_.push_back(std::move(waiting_.front()));
    waiting_.pop_front();
    limited_ = 0;
}

}  // namespace vantle
