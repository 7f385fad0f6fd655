/// H.264 pictures from one on after which nothing refers back, made to begin as after an IDR picture.
#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "media/nal_units.h"
#include "media/parameter_sets.h"

namespace vantle {

/// Makes the first picture an IDR picture and counts those after it from there, by their slice headers
/// (ISO/IEC 14496-10, 7.3.3): numbers of frames and places in the order of showing. Up to the next IDR
/// picture reference pictures may be missing, which were shown before the first.
class FreshStart {
   public:
    /// For pictures with these parameter sets.
    explicit FreshStart(const std::vector<Bytes>& parameterSets);

    /// Whether a picture of these units can be the first: it says that all after it can be decoded from it on
    /// (a recovery point at once), and has slices of its own only.
    bool canBegin(const std::vector<ByteView>& units) const;

    /// A unit as it is to be; `first` for those of the first picture. To be called in order of decoding.
    Bytes rewritten(ByteView unit, bool first);

   private:
    struct Slice;
    Slice sliceOf(ByteView unit) const;
    static Bytes withMarking(const Slice& slice, bool first);

    std::map<int, SequenceParameterSet> sequences_;
    std::map<int, PictureParameterSet> pictures_;
    std::uint32_t frameNumber_ = 0;  // of the first picture
    std::uint32_t order_ = 0;
    std::uint32_t latest_ = 0;  // number of a frame, from there
    bool wrapped_ = false;      // these numbers have begun anew
    bool ended_ = false;
};

}  // namespace vantle
