/// The pictures of a film as packets: copied where they can be, encoded where they cannot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "copying/picture_likeness.h"
#include "copying/stretch_encoder.h"
#include "media/annex_b.h"
#include "media/demuxer.h"
#include "media/fresh_start.h"
#include "media/packet_source.h"
#include "playing/film_player.h"

namespace vantle {

/// Consecutive pictures of an input, from one on with which decoding may begin, in Annex B.
class CopiedPictures {
   public:
    /// `count` pictures, of which the first shows at `first`, in the stream's time base.
    CopiedPictures(const std::string& name, const CodedPictures& coded, std::int64_t first,
                   std::int64_t count);

    /// The next packet, its times those of the input, or null at the end.
    av::Packet next();

   private:
    int stream_;
    Demuxer input_;
    AnnexB annexB_;
    std::int64_t first_;
    std::int64_t left_;
    av::Packet ahead_;  // the first, found by going there
};

/// All pictures of a film, which show as planned. Each is decoded when the one shows that is as many places
/// before it, in the order of decoding, as the reorder depth is deep: these times rise, and none is after
/// that of showing.
class FilmPictures final : public PacketSource {
   public:
    /// Encodes as StretchEncoder does. What is drawn in the frames that the plan compares is remembered, with
    /// `comparesAll` in all.
    FilmPictures(const OpenFilm& open, const CopyPlan& plan, const EncoderChoice& choice, bool comparesAll);

    AVStream& addTo(Muxer& muxer) const override;
    AVRational timeBase() const override { return plan_.shown.timeBase; }
    av::Packet next() override;

    /// What has been drawn for the encoders, as far as it is remembered, by frame.
    const std::map<std::int64_t, Brightness>& drawn() const { return drawn_; }

   private:
    /// The parameter sets of one stretch as the film has them.
    std::vector<Bytes> restatedSets(const std::vector<Bytes>& own, bool gaps) const;
    void beginEncoding(const Stretch& stretch);
    av::Frame nextDrawn(const Stretch& stretch);
    av::Packet nextOfStretch();
    void endStretch();
    /// When a picture is decoded after which all up to a place in the order of showing are.
    std::int64_t decodedAt(std::int64_t place) const;
    av::Packet rewritten(av::Packet packet);

    const OpenFilm& open_;
    const CopyPlan& plan_;
    bool comparesAll_;
    std::map<bool, StretchEncoder> encoders_;  // by whether they are for seams
    int reorder_ = 0;
    int level_ = 0;
    std::vector<std::vector<Bytes>> copiedSets_;      // by part
    std::map<bool, std::vector<Bytes>> encodedSets_;  // by whether they are seams'
    std::size_t stretch_ = 0;
    bool begun_ = false;  // the stretch has given its first packet
    std::int64_t packets_ = 0;
    std::int64_t decoded_ = std::numeric_limits<std::int64_t>::min();  // the last packet
    std::optional<FilmPlayer> player_;
    std::optional<Filters> stored_;  // from how pictures are shown to how they are stored
    std::optional<EncodedPackets> encoding_;
    std::optional<CopiedPictures> copying_;
    std::optional<FreshStart> freshStart_;  // of what is copied from a recovery point on
    std::map<std::int64_t, Brightness> drawn_;
};

}  // namespace vantle
