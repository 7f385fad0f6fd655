#include "timeline/sound_source.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <utility>
#include <vector>

namespace vantle {

namespace {

bool sameForm(const AVFrame& a, const AVFrame& b) {
    return a.sample_rate == b.sample_rate && a.format == b.format &&
           av_channel_layout_compare(&a.ch_layout, &b.ch_layout) == 0;
}

int soundStream(const Demuxer& input) {
    const std::optional<int> stream = input.best(AVMEDIA_TYPE_AUDIO);
    if (!stream) throw Error(input.name() + ": holds no sound");
    return *stream;
}

}  // namespace

SoundSource::SoundSource(Demuxer& input, int stream, const SoundFormat& format)
    : format_(format), reader_(input, stream) {}

av::Frame SoundSource::next() {
    for (;;) {
        if (av::Frame frame = converter_ ? converter_->pull() : nullptr) return frame;
        if (converter_ && converter_->ended()) converter_.reset();
        if (ended_ && !converter_ && !held_) return nullptr;
        av::Frame frame = held_ ? std::move(held_) : ended_ ? nullptr : reader_.next();
        ended_ = ended_ || !frame;
        if (frame && frame->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&frame->ch_layout, frame->ch_layout.nb_channels);
        if (converter_ && (!frame || !sameForm(*frame, *like_))) {
            // The sound ends, or goes on in another form.
            converter_->close(AV_NOPTS_VALUE);
            held_ = std::move(frame);
        } else if (frame) {
            if (!converter_) {
                converter_.emplace(*frame, reader_.stream().time_base,
                                   std::vector<Filter>{toForm(format_), {"asettb", {{"expr", "1/sr"}}}});
                like_ = av::share(*frame);
            }
            converter_->push(std::move(frame));
        }
    }
}

SoundReader::SoundReader(Demuxer& input, int stream, const SoundFormat& format, std::int64_t first)
    : name_(input.name()),
      source_(input, stream, format),
      timed_(*silence(format, 1), {1, format.sampleRate},
             {{"asetpts", {{"expr", "PTS-" + std::to_string(first)}}},
              {"atrim", {{"start_pts", "0"}}},
              {"aresample", {{"async", "1"}, {"first_pts", "0"}}},
              {"apad"}}) {}

av::Frame SoundReader::read(int samples) {
    for (;;) {
        if (av::Frame frame = timed_.pullSamples(samples)) return frame;
        if (timed_.ended()) throw Error(name_ + ": its sound cannot be read");
        if (av::Frame frame = source_.next()) {
            if (frame->pts != AV_NOPTS_VALUE) end_ = frame->pts;
            end_ += frame->nb_samples;
            timed_.push(std::move(frame));
        } else {
            timed_.close(end_);
        }
    }
}

Music::Music(const std::string& name, const SoundFormat& format)
    : input_(name),
      stream_(soundStream(input_)),
      format_(format),
      source_(std::in_place, input_, stream_, format),
      portions_(*silence(format, 1), {1, format.sampleRate}, {}) {}

av::Frame Music::read(int samples) {
    bool restarted = false;
    for (;;) {
        if (av::Frame frame = portions_.pullSamples(samples)) return frame;
        if (av::Frame frame = source_->next()) {
            frame->pts = end_;
            end_ += frame->nb_samples;
            portions_.push(std::move(frame));
            restarted = false;
        } else {
            if (std::exchange(restarted, true)) throw Error(input_.name() + ": its sound cannot be read");
            source_.reset();
            input_.reopen();
            source_.emplace(input_, stream_, format_);
        }
    }
}

}  // namespace vantle
