#include "soundtrack.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <array>
#include <utility>

namespace vantle {

namespace {

std::string layoutName(const AVCodecContext& codec) {
    std::array<char, 64> name{};
    AVChannelLayout layout = codec.ch_layout;
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC) av_channel_layout_default(&layout, layout.nb_channels);
    av_channel_layout_describe(&layout, name.data(), name.size());
    return name.data();
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
    : decoder_(name.empty() ? "lavfi:anullsrc=d=0.1" : name, AVMEDIA_TYPE_AUDIO) {
    const AVCodecContext& codec = decoder_.codec();
    const std::string rate = std::to_string(format.sampleRate);
    filters_.emplace(
        AVMEDIA_TYPE_AUDIO,
        std::vector{
            source(codec.sample_rate, codec.sample_fmt, layoutName(codec), decoder_.stream().time_base)},
        "[in0]asetpts=PTS-" + std::to_string(pictureStart(decoder_.container())) + "/TB,aresample=" + rate +
            ":async=1:first_pts=0,aformat=sample_fmts=" + av_get_sample_fmt_name(format.sampleFormat) +
            ":channel_layouts=" + format.layout + ",apad[out]");
}

av::Frame SoundReader::read(int samples) {
    for (;;) {
        if (av::Frame frame = filters_->pullSamples(samples)) return frame;
        if (filters_->ended()) throw Error(decoder_.name() + ": its sound cannot be read");
        if (av::Frame frame = decoder_.next()) {
            end_ = frame->pts +
                   av_rescale_q(frame->nb_samples, {1, frame->sample_rate}, decoder_.stream().time_base);
            filters_->push(0, std::move(frame));
        } else {
            filters_->close(0, end_);
        }
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
