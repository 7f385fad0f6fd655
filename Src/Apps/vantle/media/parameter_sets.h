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

}  // namespace vantle
