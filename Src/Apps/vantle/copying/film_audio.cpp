#include "copying/film_audio.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "media/audio_format.h"

namespace vantle {

namespace {

/// How far around what is kept an encoder hears, to settle: eight AAC frames.
constexpr std::int64_t around = 8 * std::int64_t{CodedAudio::frameSamples};

AudioFormat formatOf(const AVCodecContext& codec) {
    return {codec.sample_rate, codec.sample_fmt, codec.ch_layout.nb_channels, codec.frame_size};
}

}  // namespace

EncodedAudio::EncodedAudio(const OpenFilm& open, std::unique_ptr<Encoder> encoder, const SampleRange& kept,
                           std::vector<std::int64_t> delays)
    : film_(open.film()),
      encoder_(std::move(encoder)),
      kept_(kept),
      sample_(std::max<std::int64_t>(kept.first - around, 0)),
      track_(open, formatOf(encoder_->context()), sample_, true, std::move(delays)),
      frame_(
          av_rescale_rnd(sample_, film_.canvas.rate.num,
                         static_cast<std::int64_t>(film_.canvas.rate.den) * encoder_->context().sample_rate,
                         AV_ROUND_DOWN)) {}

av::Packet EncodedAudio::next() {
    for (;;) {
        if (av::Packet packet = encoder_->receive()) {
            if (packet->pts >= kept_.first && packet->pts < kept_.end) return packet;
            continue;
        }
        if (flushed_) return nullptr;
        const bool heard = sample_ >= kept_.end + around;
        if (const av::Frame samples = heard ? nullptr : track_.pull()) {
            samples->pts = sample_;
            sample_ += samples->nb_samples;
            encoder_->send(samples.get());
        } else if (heard || finished_) {
            encoder_->send(nullptr);
            flushed_ = true;
        } else if (frame_ < film_.frames()) {
            track_.advance(++frame_);
        } else {
            track_.finish();
            finished_ = true;
        }
    }
}

CopiedAudio::CopiedAudio(const std::string& name, const CodedAudio& coded, std::int64_t first,
                         std::int64_t count)
    : coded_(coded), input_(name), next_(first), end_(first + count) {
    input_.useAlone(coded.stream);
    const std::int64_t sample = coded.first + first * CodedAudio::frameSamples;
    if (!input_.seek(coded.stream, av_rescale_q(sample, {1, coded.parameters->sample_rate},
                                                input_.stream(coded.stream).time_base)))
        input_.reopen();
}

std::int64_t CopiedAudio::numberOf(const AVPacket& packet) const {
    const double time = static_cast<double>(packet.pts) * av_q2d(input_.stream(coded_.stream).time_base) *
                        coded_.parameters->sample_rate;
    return std::llround((time - static_cast<double>(coded_.first)) / CodedAudio::frameSamples);
}

av::Packet CopiedAudio::next() {
    if (next_ == end_) return nullptr;
    av::Packet packet;
    do packet = input_.read(coded_.stream);
    while (packet && numberOf(*packet) < next_);
    if (!packet || numberOf(*packet) != next_)
        throw NotCopied(input_.name() + ": its audio is not found again");
    ++next_;
    av_packet_free_side_data(packet.get());
    return packet;
}

av::Packet FilmAudio::nextOfStretch() {
    const AudioStretch& stretch = plan_.audioStretches[stretch_];
    constexpr std::int64_t frameSamples = CodedAudio::frameSamples;
    if (!stretch.part) {
        if (!encoding_)
            encoding_.emplace(open_, makeEncoder_(),
                              SampleRange{stretch.first * frameSamples, stretch.end() * frameSamples},
                              plan_.audioDelays);
        return encoding_->next();
    }
    if (!copying_)
        copying_.emplace(plan_.film.sourceOf(plan_.film.parts[*stretch.part]).name,
                         *plan_.audio[*stretch.part], stretch.source, stretch.aacFrames);
    return copying_->next();
}

av::Packet FilmAudio::next() {
    for (; stretch_ < plan_.audioStretches.size(); ++stretch_) {
        if (av::Packet packet = nextOfStretch()) {
            constexpr std::int64_t frameSamples = CodedAudio::frameSamples;
            const std::int64_t end =
                sampleOf(plan_.film.frames(), plan_.film.canvas.rate, plan_.modelAudio().sample_rate);
            packet->pts = packet->dts = aacFrame_++ * frameSamples;
            packet->duration = std::min(frameSamples, end - packet->pts);
            return packet;
        }
        encoding_.reset();
        copying_.reset();
    }
    return nullptr;
}

}  // namespace vantle
