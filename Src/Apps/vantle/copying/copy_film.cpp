#include "copying/copy_film.h"

#include <cstdint>
#include <memory>
#include <optional>

#include "copying/film_audio.h"
#include "copying/film_pictures.h"
#include "copying/verification.h"
#include "media/audio_format.h"
#include "media/muxer.h"
#include "output/staged_file.h"

namespace vantle {

namespace {

/// A film's audio, part of it copied or all of it encoded.
class Audio {
   public:
    Audio(const OpenFilm& open, const CopyPlan& plan, const CopyOptions& options, bool globalHeaders)
        : plan_(plan) {
        const auto make = [&options, wanted = *plan.film.audio, globalHeaders](std::int64_t bitRate) {
            return makeAudioEncoder(options.kind, options.encoders, wanted, bitRate, globalHeaders);
        };
        if (!plan.audioStretches.empty()) {
            const std::int64_t bitRate = plan.modelAudio().bit_rate;
            pieces_.emplace(open, plan, [make, bitRate] { return make(bitRate); });
        } else {
            constexpr std::int64_t ever = std::int64_t{1} << 50;
            whole_.emplace(open, make(0), SampleRange{-ever, ever});
        }
    }

    AVStream& addTo(Muxer& muxer) const {
        if (whole_) return muxer.add(whole_->context());
        const av::Parameters parameters = copyOf(plan_.modelAudio());
        parameters->codec_tag = 0;
        parameters->initial_padding = CodedAudio::frameSamples;
        return muxer.add(*parameters, timeBase(), {0, 1});
    }

    av::Packet next() { return pieces_ ? pieces_->next() : whole_->next(); }

    AVRational timeBase() const {
        return whole_ ? whole_->context().time_base : AVRational{1, plan_.modelAudio().sample_rate};
    }

   private:
    const CopyPlan& plan_;
    std::optional<FilmAudio> pieces_;
    std::optional<EncodedAudio> whole_;
};

/// As other films are written, but with room reserved for the moov box instead of faststart's second pass.
av::Options fileOptions(const CopyPlan& plan, const MovieKind& kind) {
    av::Options wanted = muxerOptions(kind);
    if (wanted.erase("movflags") == 0) return wanted;
    // More than the tables take for a picture and for a packet of audio, of the shortest that there are.
    constexpr std::int64_t perPicture = 64;
    constexpr std::int64_t perPacket = 48;
    constexpr std::int64_t shortest = 64;  // samples
    const std::int64_t frames = plan.film.frames();
    const std::int64_t packets =
        !plan.film.audio ? 0
        : plan.audioStretches.empty()
            ? sampleOf(frames, plan.film.canvas.rate, plan.film.audio->sampleRate) / shortest
            : plan.audioStretches.back().end();
    wanted["moov_size"] = std::to_string(65536 + perPicture * frames + perPacket * packets);
    return wanted;
}

}  // namespace

std::string copyFilm(const OpenFilm& open, const CopyPlan& plan, const CopyOptions& options,
                     ProgressBar& progress) {
    StagedFile file(options.name, options.overwrite);
    Muxer muxer("file:" + file.path().string(), options.kind.muxer, options.name);
    // They are opened again where they are wanted, two at a time.
    for (const std::unique_ptr<Input>& input : open.inputs) input->close();
    FilmPictures pictures(open, plan, {options.encoders.video, options.encoderOptions}, options.verifyAll);
    const AVRational rate = plan.film.canvas.rate;
    const AVStream& pictureStream = muxer.add(*pictures.parameters(), av_inv_q(rate), rate);
    std::optional<Audio> audio;
    const AVStream* audioStream = nullptr;
    if (plan.film.audio) {
        audio.emplace(open, plan, options, muxer.wantsGlobalHeaders());
        audioStream = &audio->addTo(muxer);
    }
    muxer.start(fileOptions(plan, options.kind));

    // Side by side in time, so that neither waits in memory for the other.
    av::Packet picture = pictures.next();
    av::Packet samples = audio ? audio->next() : nullptr;
    std::int64_t written = 0;
    while (picture || samples) {
        const bool pictureIsNext =
            picture &&
            (!samples || av_compare_ts(picture->dts, av_inv_q(rate), samples->dts, audio->timeBase()) <= 0);
        if (pictureIsNext) {
            muxer.write(*picture, pictureStream, av_inv_q(rate));
            picture = pictures.next();
            progress.update(++written);
        } else {
            muxer.write(*samples, *audioStream, audio->timeBase());
            samples = audio->next();
        }
    }
    muxer.finish();
    std::string fault = faultOf(file.path().string(), plan, pictures.drawn(), options.verifyAll);
    if (fault.empty()) file.commit();
    return fault;
}

}  // namespace vantle
