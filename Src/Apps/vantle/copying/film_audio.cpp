#include "copying/film_audio.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "media/audio_format.h"

namespace vantle {

namespace {

/// How far around what is kept an encoder hears, to settle: eight AAC frames.
constexpr std::int64_t around = 8;

}  // namespace

AudioFrames::AudioFrames(const OpenFilm& open, const AudioFormat& format, std::int64_t first,
                         std::vector<std::int64_t> delays)
    : film_(open.film()),
      sample_(first),
      mix_(open, format, first, true, std::move(delays)),
      frame_(av_rescale_rnd(first, film_.canvas.rate.num,
                            static_cast<std::int64_t>(film_.canvas.rate.den) * format.sampleRate,
                            AV_ROUND_DOWN)) {}

av::Frame AudioFrames::next() {
    for (;;) {
        if (av::Frame samples = mix_.pull()) {
            samples->pts = sample_;
            sample_ += samples->nb_samples;
            return samples;
        }
        if (finished_) return nullptr;
        finished_ = frame_ == film_.frames();
        if (finished_)
            mix_.finish();
        else
            mix_.advance(++frame_);
    }
}

std::unique_ptr<PacketSource> encodedAudio(const OpenFilm& open, std::unique_ptr<Encoder> encoder) {
    const auto frames = std::make_shared<AudioFrames>(open, audioFormatOf(encoder->context()), 0,
                                                      std::vector<std::int64_t>{});
    return std::make_unique<EncodedPackets>(std::move(encoder), [frames] { return frames->next(); });
}

EncodedAudio::EncodedAudio(const OpenFilm& open, std::unique_ptr<Encoder> encoder, std::int64_t first,
                           std::int64_t end, std::vector<std::int64_t> delays)
    : first_(first * CodedAudio::frameSamples),
      end_(end * CodedAudio::frameSamples),
      frames_(open, audioFormatOf(encoder->context()),
              std::max<std::int64_t>(first - around, 0) * CodedAudio::frameSamples, std::move(delays)),
      packets_(std::move(encoder), [this, heard = (end + around) * CodedAudio::frameSamples] {
          av::Frame samples = frames_.next();
          return samples && samples->pts < heard ? std::move(samples) : nullptr;
      }) {}

av::Packet EncodedAudio::next() {
    av::Packet packet = packets_.next();
    while (packet && packet->pts < first_) packet = packets_.next();
    return packet && packet->pts < end_ ? std::move(packet) : nullptr;
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

AVStream& FilmAudio::addTo(Muxer& muxer) const {
    const av::Parameters parameters = copyOf(plan_.modelAudio());
    parameters->codec_tag = 0;
    parameters->initial_padding = CodedAudio::frameSamples;
    return muxer.add(*parameters, timeBase(), {0, 1});
}

av::Packet FilmAudio::nextOfStretch() {
    const AudioStretch& stretch = plan_.audioPlan.stretches[stretch_];
    if (!stretch.part) {
        if (!encoding_)
            encoding_.emplace(open_, makeEncoder_(), stretch.first, stretch.end(), plan_.audioPlan.delays);
        return encoding_->next();
    }
    if (!copying_)
        copying_.emplace(plan_.film.sourceOf(plan_.film.parts[*stretch.part]).name,
                         *plan_.audio[*stretch.part], stretch.source, stretch.aacFrames);
    return copying_->next();
}

av::Packet FilmAudio::next() {
    for (; stretch_ < plan_.audioPlan.stretches.size(); ++stretch_) {
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
