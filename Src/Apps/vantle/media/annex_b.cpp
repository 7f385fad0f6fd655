#include "media/annex_b.h"

#include <cstddef>

namespace vantle {

AnnexB::AnnexB(NalCodec codec, const AVStream& stream) : codec_(codec) {
    const char* const name = codec == NalCodec::h264 ? "h264_mp4toannexb" : "hevc_mp4toannexb";
    AVBSFContext* filter = nullptr;
    av::check(av_bsf_alloc(av::check(av_bsf_get_by_name(name), name), &filter), name);
    filter_.reset(filter);
    av::check(avcodec_parameters_copy(filter->par_in, stream.codecpar), name);
    filter->time_base_in = stream.time_base;
    av::check(av_bsf_init(filter), "its description");
}

std::vector<Bytes> AnnexB::header(bool parameterSets) const {
    const AVCodecParameters& parameters = *filter_->par_out;
    std::vector<Bytes> units;
    for (const ByteView unit :
         unitsOf({parameters.extradata, static_cast<std::size_t>(parameters.extradata_size)}))
        if ((kindOf(codec_, unit) == NalKind::parameterSet) == parameterSets)
            units.emplace_back(unit.begin(), unit.end());
    return units;
}

av::Packet AnnexB::converted(av::Packet packet) {
    av::check(av_bsf_send_packet(filter_.get(), packet.get()), "a packet");
    av::check(av_bsf_receive_packet(filter_.get(), packet.get()), "a packet");
    return packet;
}

}  // namespace vantle
