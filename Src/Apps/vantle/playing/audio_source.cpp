#include "playing/audio_source.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

namespace vantle {

namespace {

bool sameSamples(const AVFrame& a, const AVFrame& b) {
    return a.sample_rate == b.sample_rate && a.format == b.format &&
           av_channel_layout_compare(&a.ch_layout, &b.ch_layout) == 0;
}

int audioStream(const Demuxer& input) {
    if (const std::optional<int> stream = input.best(AVMEDIA_TYPE_AUDIO)) return *stream;
    throw Error(input.name() + ": " + input.whyNone(AVMEDIA_TYPE_AUDIO));
}

}  // namespace

AudioSource::AudioSource(Demuxer& input, int stream, const AudioFormat& format)
    : format_(format), reader_(input, stream) {}

av::Frame AudioSource::next() {
    for (;;) {
        if (av::Frame frame = converter_ ? converter_->pull() : nullptr) return frame;
        if (converter_ && converter_->ended()) converter_.reset();
        if (ended_ && !converter_ && !held_) return nullptr;
        av::Frame frame = held_ ? std::move(held_) : ended_ ? nullptr : reader_.next();
        ended_ = ended_ || !frame;
        if (frame && frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&frame->ch_layout, frame->ch_layout.nb_channels);
        if (converter_ && (!frame || !sameSamples(*frame, *like_))) {
            // The audio ends, or goes on in another format.
            converter_->close(AV_NOPTS_VALUE);
            held_ = std::move(frame);
        } else if (frame) {
            if (!converter_) {
                converter_.emplace(*frame, reader_.stream().time_base,
                                   std::vector<Filter>{toFormat(format_), {"asettb", {{"expr", "1/sr"}}}});
                like_ = av::share(*frame);
            }
            converter_->push(std::move(frame));
        }
    }
}

std::unique_ptr<Demuxer> audioFrom(const Source& source, std::int64_t first, int sampleRate) {
    const int stream = source.audio->stream;
    auto demuxer = std::make_unique<Demuxer>(source.name);
    // Beside the pictures, though they are not wanted: of audio alone a long pause might look like a jump in
    // time.
    demuxer->use(stream);
    // A decoder needs a run-up.
    const std::int64_t time = std::max<std::int64_t>(first - sampleRate, 0);
    if (!demuxer->seek(stream, av_rescale_q(time, {1, sampleRate}, demuxer->stream(stream).time_base)))
        demuxer->reopen();
    return demuxer;
}

AudioReader::AudioReader(Demuxer& input, int stream, const AudioFormat& format, std::int64_t first)
    : source_(input, stream, format), format_(format), next_(first) {}

av::Frame AudioReader::read(int samples) {
    av::Frame audio = silence(format_, samples);
    const std::int64_t start = next_;
    while (next_ < start + samples && (held_ || take())) {
        const std::int64_t end = std::min(place_ + held_->nb_samples, start + samples);
        next_ = std::max(next_, place_);
        if (next_ < end) {
            av_samples_copy(audio->extended_data, held_->extended_data, static_cast<int>(next_ - start),
                            static_cast<int>(next_ - place_), static_cast<int>(end - next_), format_.channels,
                            format_.sampleFormat);
            next_ = end;
        }
        if (place_ + held_->nb_samples <= next_) held_.reset();
    }
    next_ = start + samples;
    return audio;
}

bool AudioReader::take() {
    held_ = source_.next();
    if (!held_) return false;
    // Times are rounded and clocks drift: what lies nearer to the audio before it than this follows it.
    const std::int64_t slack = format_.sampleRate / 10;
    const std::int64_t stated = held_->pts != AV_NOPTS_VALUE ? held_->pts : end_.value_or(0);
    place_ = end_ && std::abs(stated - *end_) <= slack ? *end_ : stated;
    end_ = place_ + held_->nb_samples;
    return true;
}

MusicReader::MusicReader(const Music& music, AVRational frameRate, const AudioFormat& format)
    : input_(music.file),
      stream_(audioStream(input_)),
      format_(format),
      in_(music.in ? music.in->samples(frameRate, format.sampleRate) : 0),
      out_(music.out ? music.out->samples(frameRate, format.sampleRate)
                     : std::numeric_limits<std::int64_t>::max()),
      source_(std::in_place, input_, stream_, format),
      portions_(*silence(format, 1), {1, format.sampleRate}, {}) {}

av::Frame MusicReader::read(int samples) {
    for (;;) {
        if (av::Frame frame = portions_.pullSamples(samples)) return frame;
        av::Frame frame = place_ < out_ ? source_->next() : nullptr;
        if (!frame) {
            if (!std::exchange(heard_, false))
                throw Error(input_.name() +
                            (place_ > 0 ? ": in lies after its end" : ": its audio cannot be read"));
            place_ = 0;
            source_.reset();
            input_.reopen();
            source_.emplace(input_, stream_, format_);
            continue;
        }
        const std::int64_t first = std::max(in_ - place_, std::int64_t{0});
        const std::int64_t end = std::min<std::int64_t>(out_ - place_, frame->nb_samples);
        place_ += frame->nb_samples;
        if (first >= end) continue;
        heard_ = true;
        av::Frame part = silence(format_, static_cast<int>(end - first));
        av_samples_copy(part->extended_data, frame->extended_data, 0, static_cast<int>(first),
                        part->nb_samples, format_.channels, format_.sampleFormat);
        part->pts = end_;
        end_ += part->nb_samples;
        portions_.push(std::move(part));
    }
}

}  // namespace vantle
