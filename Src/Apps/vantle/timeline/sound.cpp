#include "timeline/sound.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

namespace vantle {

namespace {

std::string layoutName(int channels) {
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, channels);
    std::array<char, 64> name{};
    av_channel_layout_describe(&layout, name.data(), name.size());
    return name.data();
}

bool sameForm(const AVFrame& a, const AVFrame& b) {
    return a.sample_rate == b.sample_rate && a.format == b.format &&
           av_channel_layout_compare(&a.ch_layout, &b.ch_layout) == 0;
}

Filter toForm(const SoundFormat& format) {
    return {"aformat",
            {{"sample_fmts", av_get_sample_fmt_name(format.sampleFormat)},
             {"sample_rates", std::to_string(format.sampleRate)},
             {"channel_layouts", layoutName(format.channels)}}};
}

/// Sound is mixed in single precision, plane by plane.
SoundFormat mixed(SoundFormat format) {
    format.sampleFormat = AV_SAMPLE_FMT_FLTP;
    return format;
}

}  // namespace

SoundReader::SoundReader(Input& input, const SoundFormat& format, std::int64_t first)
    : reader_(input.demuxer(), input.soundStream().value()),
      name_(input.name()),
      format_(format),
      timed_(*silence(format, 1), {1, format.sampleRate},
             {{"asetpts", {{"expr", "PTS-" + std::to_string(first)}}},
              {"atrim", {{"start_pts", "0"}}},
              {"aresample", {{"async", "1"}, {"first_pts", "0"}}},
              {"apad"}}) {}

av::Frame SoundReader::read(int samples) {
    for (;;) {
        if (av::Frame frame = timed_.pullSamples(samples)) return frame;
        if (timed_.ended()) throw Error(name_ + ": its sound cannot be read");
        av::Frame frame = reader_.next();
        // The sound may go on in another format.
        if (!frame || (like_ && !sameForm(*frame, *like_))) {
            if (like_) converter_->close(AV_NOPTS_VALUE);
            passOn();
            like_.reset();
        }
        if (!frame) {
            timed_.close(end_);
            continue;
        }
        if (frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&frame->ch_layout, frame->ch_layout.nb_channels);
        if (!like_) {
            converter_.emplace(*frame, reader_.stream().time_base, std::vector<Filter>{toForm(format_)});
            like_ = av::share(*frame);
        }
        converter_->push(std::move(frame));
        passOn();
    }
}

void SoundReader::passOn() {
    while (av::Frame frame = converter_ ? converter_->pull() : nullptr) {
        if (frame->pts != AV_NOPTS_VALUE) end_ = frame->pts;
        end_ += frame->nb_samples;
        timed_.push(std::move(frame));
    }
}

Soundtrack::Soundtrack(const Film& film, const SoundFormat& format, std::int64_t first)
    : film_(film),
      format_(mixed(format)),
      frameSamples_(format.frameSamples),
      output_(*silence(format_, 1), {1, format.sampleRate}, {toForm(format)}),
      begin_(sample(first)),
      next_(begin_) {}

std::int64_t Soundtrack::sample(std::int64_t frame) const {
    return sampleOf(frame, film_.canvas.rate, format_.sampleRate);
}

void Soundtrack::advance(std::int64_t frame) {
    const std::int64_t end = sample(frame);
    if (end <= next_) return;
    const av::Frame mix = silence(format_, static_cast<int>(end - next_));
    for (std::size_t part = 0; part < film_.parts.size(); ++part)
        if (sounds(part) && sample(film_.parts[part].start) < end && sample(film_.parts[part].end()) > next_)
            add(*mix, part);
    players_.remove_if([&](const Player& player) { return sample(film_.parts[player.part].end()) <= end; });
    mix->pts = next_ - begin_;
    next_ = end;
    given_ = end - begin_;
    output_.push(av::share(*mix));
}

void Soundtrack::add(AVFrame& mix, std::size_t number) {
    const Part& part = film_.parts[number];
    // What of the part lies in these samples.
    const std::int64_t begin = std::max(sample(part.start), next_);
    const std::int64_t end = std::min(sample(part.end()), next_ + mix.nb_samples);
    auto player = std::ranges::find(players_, number, &Player::part);
    if (player == players_.end()) {
        // Counted from the input's own first picture, so that its sound lies with its pictures.
        const std::int64_t first = part.input->startSample(format_.sampleRate) + sample(part.first);
        players_.emplace_back(number, *part.input, format_, first + begin - sample(part.start));
        player = std::prev(players_.end());
    }
    const av::Frame sound = player->reader.read(static_cast<int>(end - begin));
    // How loud it is rises from where the join before it begins, and falls to where the one after it ends.
    const auto share = [&](std::size_t join, std::int64_t at) {
        const Join& between = film_.joins[join];
        const std::int64_t start = sample(between.start);
        const std::int64_t length = sample(between.end()) - start;
        return std::clamp(static_cast<float>(at - start) / static_cast<float>(length), 0.0F, 1.0F);
    };
    const bool fadesIn = number > 0 && sounds(number - 1);
    const bool fadesOut = number + 1 < film_.parts.size() && sounds(number + 1);
    for (int channel = 0; channel < format_.channels; ++channel) {
        const auto* const in = reinterpret_cast<const float*>(sound->extended_data[channel]);
        auto* const out = reinterpret_cast<float*>(mix.extended_data[channel]) + (begin - next_);
        for (std::int64_t i = 0; i < end - begin; ++i) {
            const float rise = fadesIn ? share(number - 1, begin + i) : 1.0F;
            const float fall = fadesOut ? 1.0F - share(number, begin + i) : 1.0F;
            out[i] += in[i] * rise * fall;
        }
    }
}

av::Frame Soundtrack::pull() {
    return frameSamples_ > 0 ? output_.pullSamples(frameSamples_) : output_.pull();
}

}  // namespace vantle
