#include "copying/copy_film.h"

#include <memory>
#include <optional>

#include "copying/film_pictures.h"
#include "copying/film_sound.h"
#include "copying/verification.h"
#include "media/muxer.h"
#include "output/staged_file.h"

namespace vantle {

namespace {

/// A film's sound, part of it copied or all of it encoded.
class Sound {
   public:
    Sound(const CopyPlan& plan, const CopyOptions& options, bool globalHeaders) : plan_(plan) {
        const auto open = [&options, globalHeaders](std::int64_t bitRate) {
            return makeSoundEncoder(options.kind, options.encoders, *options.sound, bitRate, globalHeaders);
        };
        if (!plan.soundStretches.empty()) {
            const std::int64_t bitRate = plan.modelSound().bit_rate;
            pieces_.emplace(plan, [open, bitRate] { return open(bitRate); });
        } else {
            constexpr std::int64_t ever = std::int64_t{1} << 50;
            whole_.emplace(plan.film, open(0), options.music, SampleRange{-ever, ever});
        }
    }

    AVStream& addTo(Muxer& muxer) const {
        if (whole_) return muxer.add(whole_->context());
        const av::Parameters form = sharedForm(plan_.modelSound());
        form->codec_tag = 0;
        form->initial_padding = CodedSound::portion;
        return muxer.add(*form, timeBase(), {0, 1});
    }

    av::Packet next() { return pieces_ ? pieces_->next() : whole_->next(); }

    AVRational timeBase() const {
        return whole_ ? whole_->context().time_base : AVRational{1, plan_.modelSound().sample_rate};
    }

   private:
    const CopyPlan& plan_;
    std::optional<FilmSound> pieces_;
    std::optional<EncodedSound> whole_;
};

}  // namespace

std::string copyFilm(const CopyPlan& plan, const CopyOptions& options, ProgressBar& progress) {
    StagedFile file(options.name, options.overwrite);
    Muxer muxer("file:" + file.path().string(), options.kind.muxer, options.name);
    FilmPictures pictures(plan, options.encoders.video, options.encoderOptions);
    const AVRational rate = plan.film.canvas.rate;
    const AVStream& pictureStream = muxer.add(*pictures.form(), av_inv_q(rate), rate);
    std::optional<Sound> sound;
    const AVStream* soundStream = nullptr;
    if (options.sound) {
        sound.emplace(plan, options, muxer.wantsGlobalHeaders());
        soundStream = &sound->addTo(muxer);
    }
    muxer.start(muxerOptions(options.kind));

    // Side by side in time, so that neither waits in memory for the other.
    av::Packet picture = pictures.next();
    av::Packet samples = sound ? sound->next() : nullptr;
    std::int64_t written = 0;
    while (picture || samples) {
        const bool pictureIsNext =
            picture &&
            (!samples || av_compare_ts(picture->dts, av_inv_q(rate), samples->dts, sound->timeBase()) <= 0);
        if (pictureIsNext) {
            muxer.write(*picture, pictureStream, av_inv_q(rate));
            picture = pictures.next();
            progress.update(++written);
        } else {
            muxer.write(*samples, *soundStream, sound->timeBase());
            samples = sound->next();
        }
    }
    muxer.finish();
    std::string fault = faultOf(file.path().string(), plan, pictures.drawn(), options.verifyAll);
    if (fault.empty()) file.commit();
    return fault;
}

}  // namespace vantle
