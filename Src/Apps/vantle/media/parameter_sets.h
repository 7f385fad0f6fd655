/// Parameter sets: what decoders of H.264 and HEVC must know before they decode.
#pragma once

#include <optional>
#include <vector>

#include "media/nal_units.h"

namespace vantle {

/// What a sequence parameter set says, as far as one must know who puts streams together.
struct SequenceParameterSet {
    int id = 0;
    int profile = 0;
    int level = 0;       ///< as it is coded
    int references = 0;  ///< pictures that may be referred to
    int reorder = 0;     ///< reorder depth, where that is stated
    bool progressive = true;
    bool separatePlanes = false;
};

/// Reads a sequence parameter set; none when the unit is another one. Throws Error when it is damaged.
std::optional<SequenceParameterSet> sequenceParameterSet(NalCodec codec, ByteView unit);

/// What an H.264 picture parameter set says.
struct PictureParameterSet {
    int id = 0;
    bool sliceGroups = false;  ///< parts of its pictures may come in any order
};

/// Reads an H.264 picture parameter set; none when the unit is another one. Throws Error when it is damaged.
std::optional<PictureParameterSet> pictureParameterSet(ByteView unit);

/// A sequence parameter set that states a reorder depth, so that no decoder needs to guess it, and a level;
/// other sets come back as they are.
Bytes restated(NalCodec codec, ByteView unit, int reorder, int level);

/// What a file keeps of a stream outside its packets: avcC and hvcC (ISO/IEC 14496-15).
class DecoderConfiguration {
   public:
    /// Reads one. Throws Error when it is none, or the packets' lengths do not have four bytes.
    DecoderConfiguration(NalCodec codec, ByteView record);

    NalCodec codec() const { return codec_; }
    const std::vector<Bytes>& sets() const { return sets_; }

    /// The same with other sets; the first sequence set's profile and level are the file's.
    Bytes withSets(const std::vector<Bytes>& sets) const;

   private:
    NalCodec codec_;
    Bytes head_;  // what comes before the sets
    std::vector<Bytes> sets_;
    Bytes tail_;  // and after them
};

}  // namespace vantle
