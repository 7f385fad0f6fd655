/// H.264 and HEVC in the byte stream format (Annex B of both), whatever a container keeps them in.
#pragma once

extern "C" {
#include <libavcodec/bsf.h>
}

#include <memory>
#include <vector>

#include "media/av.h"
#include "media/nal_units.h"

namespace vantle {

/// Brings the packets of a stream into that format.
class AnnexB {
   public:
    /// For a stream of this codec. Throws Error when what the container says of it is damaged.
    AnnexB(NalCodec codec, const AVStream& stream);

    /// The NAL units that the container keeps beside the packets: those that are parameter sets, or the
    /// others, which are SEI.
    std::vector<Bytes> header(bool parameterSets) const;

    /// The packet in that format, a keyframe with the units from beside the packets in front. Throws Error
    /// when it is damaged.
    av::Packet converted(av::Packet packet);

   private:
    struct Free {
        void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    };

    NalCodec codec_;
    std::unique_ptr<AVBSFContext, Free> filter_;
};

}  // namespace vantle
