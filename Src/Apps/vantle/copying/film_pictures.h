/// The pictures of a film as packets: copied where they can be, encoded where they cannot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "copying/picture_likeness.h"
#include "copying/stretch_encoder.h"
#include "media/demuxer.h"
#include "media/encoder.h"
#include "playing/film_reader.h"
#include "playing/painter.h"

namespace vantle {

/// One stretch of a film's frames, encoded.
class EncodedPictures {
   public:
    /// Remembers what is drawn in the frames that the plan compares, or in all.
    EncodedPictures(const OpenFilm& open, const CopyPlan& plan, const StretchEncoder& encoder,
                    const Stretch& stretch, bool comparesAll);
    EncodedPictures(const EncodedPictures&) = delete;
    EncodedPictures& operator=(const EncodedPictures&) = delete;
    ~EncodedPictures();

    /// The next packet, its times in frames of the film, or null at the end.
    av::Packet next();

    /// What has been drawn, as far as it is remembered, by frame.
    std::map<std::int64_t, Brightness>& drawn() { return drawn_; }

   private:
    const OpenFilm& open_;
    const CopyPlan& plan_;
    Stretch stretch_;
    bool comparesAll_;
    std::unique_ptr<Encoder> encoder_;
    FilmReader reader_;
    Painter painter_;
    std::int64_t frame_;
    bool flushed_ = false;
    std::map<std::int64_t, Brightness> drawn_;
};

/// Consecutive pictures of an input, from one on with which decoding may begin, as they are coded.
class CopiedPictures {
   public:
    CopiedPictures(const std::string& name, const CodedPictures& coded, std::int64_t first,
                   std::int64_t count);

    /// The next packet, its time the picture's number, or null at the end.
    av::Packet next();

   private:
    const CodedPictures& coded_;
    Demuxer input_;
    std::int64_t first_;
    std::int64_t left_;
    av::Packet ahead_;  // the first, found by going there
};

/// All pictures of a film in the order in which they are decoded. Times are in frames of the film; that of
/// decoding rises by one from packet to packet and is never after that of showing.
class FilmPictures {
   public:
    /// Encodes as StretchEncoder does, and remembers what EncodedPictures does.
    FilmPictures(const OpenFilm& open, const CopyPlan& plan, const EncoderChoice& choice, bool comparesAll);

    /// The stream's description for a file.
    av::Parameters parameters() const;

    av::Packet next();

    /// What has been drawn for the encoders, as far as it is remembered, by frame.
    const std::map<std::int64_t, Brightness>& drawn() const { return drawn_; }

   private:
    /// The parameter sets of one stretch as the film has them.
    std::vector<Bytes> setsOf(const std::vector<Bytes>& own) const;
    av::Packet nextOfStretch();
    av::Packet rewritten(av::Packet packet) const;

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
    std::optional<EncodedPictures> encoding_;
    std::optional<CopiedPictures> copying_;
    std::map<std::int64_t, Brightness> drawn_;
};

}  // namespace vantle
