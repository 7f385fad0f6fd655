#include "timeline/soundtrack.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <array>
#include <utility>

namespace vantle {

namespace {

std::string layoutName(AVChannelLayout layout) {
    std::array<char, 64> name{};
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC) av_channel_layout_default(&layout, layout.nb_channels);
    av_channel_layout_describe(&layout, name.data(), name.size());
    return name.data();
}

bool sameFormat(const AVFrame& a, const AVFrame& b) {
    return a.sample_rate == b.sample_rate && a.format == b.format &&
           av_channel_layout_compare(&a.ch_layout, &b.ch_layout) == 0;
}

std::string source(int rate, AVSampleFormat format, const std::string& layout, AVRational timeBase) {
    return "sample_rate=" + std::to_string(rate) + ":sample_fmt=" + av_get_sample_fmt_name(format) +
           ":channel_layout=" + layout + ":time_base=" + std::to_string(timeBase.num) + "/" +
           std::to_string(timeBase.den);
}

/// The time at which an input's pictures start, in seconds: sound is in step with them.
double pictureStart(AVFormatContext& input) {
    const int stream = av_find_best_stream(&input, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (stream < 0 || input.streams[stream]->start_time == AV_NOPTS_VALUE) return 0.0;
    return static_cast<double>(input.streams[stream]->start_time) * av_q2d(input.streams[stream]->time_base);
}

}  // namespace

std::optional<int> soundSampleRate(const std::string& name) {
    if (!Decoder::has(name, AVMEDIA_TYPE_AUDIO)) return {};
    return Decoder(name, AVMEDIA_TYPE_AUDIO).codec().sample_rate;
}

SoundReader::SoundReader(const std::string& name, const SoundFormat& format)
    : decoder_(name.empty() ? "lavfi:anullsrc=d=0.1" : name, AVMEDIA_TYPE_AUDIO),
      format_(format),
      timed_(AVMEDIA_TYPE_AUDIO,
             {source(format.sampleRate, format.sampleFormat, format.layout, {1, format.sampleRate})},
             "[in0]asetpts=PTS-" + std::to_string(pictureStart(decoder_.container())) +
                 "/TB,aresample=async=1:first_pts=0,apad[out]") {}

av::Frame SoundReader::read(int samples) {
    for (;;) {
        if (av::Frame frame = timed_.pullSamples(samples)) return frame;
        if (timed_.ended()) throw Error(decoder_.name() + ": its sound cannot be read");
        av::Frame frame = decoder_.next();
        // The sound may go on in another format.
        if (!frame || (like_ && !sameFormat(*frame, *like_))) {
            if (like_) converter_->close(0, AV_NOPTS_VALUE);
            passOn();
            like_.reset();
        }
        if (!frame) {
            timed_.close(0, end_);
            continue;
        }
        if (!like_) {
            converter_.emplace(
                AVMEDIA_TYPE_AUDIO,
                std::vector{source(frame->sample_rate, static_cast<AVSampleFormat>(frame->format),
                                   layoutName(frame->ch_layout), decoder_.stream().time_base)},
                "[in0]aresample=" + std::to_string(format_.sampleRate) +
                    ",aformat=sample_fmts=" + av_get_sample_fmt_name(format_.sampleFormat) +
                    ":channel_layouts=" + format_.layout + "[out]");
            like_ = av::share(*frame);
        }
        converter_->push(0, std::move(frame));
        passOn();
    }
}

void SoundReader::passOn() {
    while (av::Frame frame = converter_ ? converter_->pull() : nullptr) {
        if (frame->pts != AV_NOPTS_VALUE) end_ = frame->pts;
        end_ += frame->nb_samples;
        timed_.push(0, std::move(frame));
    }
}

Soundtrack::Soundtrack(const std::string& from, const std::string& to, const SoundFormat& format,
                       AVRational frameRate, std::int64_t overlapFrames, std::int64_t firstFrame,
                       std::int64_t lastFrame)
    : format_(format),
      frameRate_(frameRate),
      crossfades_(!from.empty() && !to.empty()),
      fromHasSound_(!from.empty()),
      overlapFrames_(overlapFrames),
      fade_(crossfades_ ? samples(overlapFrames) : 0),
      first_(from, format),
      second_(to, format) {
    const std::string input =
        source(format.sampleRate, format.sampleFormat, format.layout, {1, format.sampleRate});
    const std::string part =
        "atrim=start_sample=" + std::to_string(samples(firstFrame)) +
        ":end_sample=" + std::to_string(samples(lastFrame + 1)) +
        ",asetpts=N/SR/TB,aformat=sample_fmts=" + av_get_sample_fmt_name(format.sampleFormat) + "[out]";
    if (crossfades_)
        filters_.emplace(AVMEDIA_TYPE_AUDIO, std::vector{input, input},
                         "[in0][in1]acrossfade=ns=" + std::to_string(fade_) + "," + part);
    else
        filters_.emplace(AVMEDIA_TYPE_AUDIO, std::vector{input}, "[in0]" + part);
}

std::int64_t Soundtrack::samples(std::int64_t frames) const {
    return av_rescale(frames, static_cast<std::int64_t>(format_.sampleRate) * frameRate_.den, frameRate_.num);
}

void Soundtrack::endFrom(std::int64_t frames) {
    // Without a crossfade the second sound follows the first: TO's own from where the overlap begins, or
    // silence from where FROM ends.
    firstLength_ = samples(crossfades_ || fromHasSound_ ? frames : frames - overlapFrames_);
}

void Soundtrack::advance(std::int64_t frames) {
    const std::int64_t target = samples(frames) + fade_;
    feed(first_, 0, firstFed_, std::min(target, firstLength_));
    if (firstFed_ < firstLength_) return;
    if (crossfades_ && !std::exchange(firstClosed_, true)) filters_->close(0, firstFed_);
    feed(second_, crossfades_ ? 1 : 0, secondFed_, target - firstLength_);
}

void Soundtrack::finish() {
    if (!firstClosed_) filters_->close(0, crossfades_ ? firstFed_ : firstFed_ + secondFed_);
    if (crossfades_) filters_->close(1, secondFed_);
}

void Soundtrack::feed(SoundReader& reader, std::size_t input, std::int64_t& fed, std::int64_t until) {
    while (fed < until) {
        constexpr std::int64_t most = 4096;
        const auto count = static_cast<int>(std::min(until - fed, most));
        av::Frame frame = reader.read(count);
        frame->pts = input == 0 && !crossfades_ ? firstFed_ + secondFed_ : fed;
        fed += frame->nb_samples;
        filters_->push(input, std::move(frame));
    }
}

}  // namespace vantle
