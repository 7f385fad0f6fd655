/// The audio of a film as packets: copied where it can be, encoded where it cannot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "media/demuxer.h"
#include "media/encoder.h"
#include "playing/audio_mix.h"

namespace vantle {

/// Samples of a film's audio, first and end.
struct SampleRange {
    std::int64_t first = 0;
    std::int64_t end = 0;
};

/// Part of a film's audio, encoded.
class EncodedAudio {
   public:
    /// The packets that begin in `kept`. What lies around it is heard by the encoder too, as the film has it.
    /// `delays` are those of AudioMix.
    EncodedAudio(const OpenFilm& open, std::unique_ptr<Encoder> encoder, const SampleRange& kept,
                 std::vector<std::int64_t> delays = {});

    /// The next packet, its times in samples, or null at the end.
    av::Packet next();

    const AVCodecContext& context() const { return encoder_->context(); }

   private:
    const Film& film_;
    std::unique_ptr<Encoder> encoder_;
    SampleRange kept_;
    std::int64_t sample_;  // the next that the encoder is to hear
    AudioMix track_;
    std::int64_t frame_;     // of the film, before which the audio is mixed
    bool finished_ = false;  // all of it is mixed
    bool flushed_ = false;   // the encoder has been told of the end
};

/// Consecutive packets of an input's audio.
class CopiedAudio {
   public:
    CopiedAudio(const std::string& name, const CodedAudio& coded, std::int64_t first, std::int64_t count);

    /// The next packet, or null at the end.
    av::Packet next();

   private:
    std::int64_t numberOf(const AVPacket& packet) const;

    const CodedAudio& coded_;
    Demuxer input_;
    std::int64_t next_;
    std::int64_t end_;
};

/// All audio of a film whose plan copies some of it.
class FilmAudio {
   public:
    using MakeEncoder = std::function<std::unique_ptr<Encoder>()>;
    FilmAudio(const OpenFilm& open, const CopyPlan& plan, MakeEncoder makeEncoder)
        : open_(open), plan_(plan), makeEncoder_(std::move(makeEncoder)) {}

    /// The next packet, its times in samples, or null at the end.
    av::Packet next();

   private:
    av::Packet nextOfStretch();

    const OpenFilm& open_;
    const CopyPlan& plan_;
    MakeEncoder makeEncoder_;
    std::size_t stretch_ = 0;
    std::int64_t aacFrame_ = -1;
    std::optional<EncodedAudio> encoding_;
    std::optional<CopiedAudio> copying_;
};

}  // namespace vantle
