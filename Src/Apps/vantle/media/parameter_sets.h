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
    bool monochrome = false;
    int frameNumberBits = 0;  ///< H.264: of a number of a frame
    int orderType = 0;        ///< H.264: how the order of showing is coded
    int orderBits = 0;        ///< H.264: of a place in it, for type 0
    bool progressive = true;
    bool separatePlanes = false;
};

/// Reads a sequence parameter set; none when the unit is another one. Throws Error when it is damaged.
std::optional<SequenceParameterSet> sequenceParameterSet(NalCodec codec, ByteView unit);

/// What an H.264 picture parameter set says.
struct PictureParameterSet {
    int id = 0;
    int sequence = 0;                ///< the sequence parameter set that goes with it
    int references[2] = {1, 1};      ///< that a slice may refer to, in either list, unless it says otherwise
    bool weighted = false;           ///< slices of P pictures state weights
    bool weightedBoth = false;       ///< those of B pictures do
    bool arithmetic = false;         ///< pictures are coded with CABAC
    bool statesBottomOrder = false;  ///< slices state the order of bottom fields too
    bool sliceGroups = false;  ///< parts of its pictures may come in any order: nothing else is read then
    bool statesDeblocking = false;  ///< slices state how they are deblocked
    bool redundant = false;         ///< slices may be repeated
};

/// Reads an H.264 picture parameter set; none when the unit is another one. Throws Error when it is damaged.
std::optional<PictureParameterSet> pictureParameterSet(ByteView unit);

/// A sequence parameter set that states a reorder depth, so that no decoder needs to guess it, and a level,
/// and with `gaps` (H.264) that reference pictures may be missing; other sets come back as they are.
Bytes restated(NalCodec codec, ByteView unit, int reorder, int level, bool gaps = false);

}  // namespace vantle
