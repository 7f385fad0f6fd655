#include "media/packet_source.h"

namespace vantle {

av::Packet EncodedPackets::next() {
    for (;;) {
        if (av::Packet packet = encoder_->receive()) {
            // Encoders say nothing of how long a picture shows, or what its source said in units of its own.
            if (encoder_->context().codec_type == AVMEDIA_TYPE_VIDEO) packet->duration = 1;
            return packet;
        }
        if (flushed_) return nullptr;
        const av::Frame frame = frames_();
        encoder_->send(frame.get());
        flushed_ = !frame;
    }
}

}  // namespace vantle
