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
#include "media/packet_source.h"
#include "playing/audio_mix.h"

namespace vantle {

/// A film's audio for an encoder, read apart from its pictures.
class AudioFrames {
   public:
    /// From the film's sample `first` on. `delays` are those of AudioMix.
    AudioFrames(const OpenFilm& open, const AudioFormat& format, std::int64_t first,
                std::vector<std::int64_t> delays);

    /// The next audio, its time in samples of the film; null at the end.
    av::Frame next();

   private:
    const Film& film_;
    std::int64_t sample_;
    AudioMix mix_;
    std::int64_t frame_;  // of the film, before which the audio is mixed
    bool finished_ = false;
};

/// All of a film's audio, encoded.
std::unique_ptr<PacketSource> encodedAudio(const OpenFilm& open, std::unique_ptr<Encoder> encoder);

/// AAC frames of a film's audio, encoded. What lies around them is heard by the encoder too, as the film has
/// it.
class EncodedAudio {
   public:
    /// AAC frames `first` to before `end`.
    EncodedAudio(const OpenFilm& open, std::unique_ptr<Encoder> encoder, std::int64_t first, std::int64_t end,
                 std::vector<std::int64_t> delays);
    EncodedAudio(const EncodedAudio&) = delete;
    EncodedAudio& operator=(const EncodedAudio&) = delete;

    /// The next packet, or null at the end.
    av::Packet next();

   private:
    std::int64_t first_;  // samples
    std::int64_t end_;
    AudioFrames frames_;
    EncodedPackets packets_;
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

/// All audio of a film whose plan copies some of it. Times are in samples.
class FilmAudio final : public PacketSource {
   public:
    using MakeEncoder = std::function<std::unique_ptr<Encoder>()>;
    FilmAudio(const OpenFilm& open, const CopyPlan& plan, MakeEncoder makeEncoder)
        : open_(open), plan_(plan), makeEncoder_(std::move(makeEncoder)) {}

    AVStream& addTo(Muxer& muxer) const override;
    AVRational timeBase() const override { return {1, plan_.modelAudio().sample_rate}; }
    av::Packet next() override;

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
