/// Streams of packets, encoded or copied.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "media/encoder.h"
#include "media/muxer.h"

namespace vantle {

/// The packets of one stream of a file.
class PacketSource {
   public:
    PacketSource() = default;
    PacketSource(const PacketSource&) = delete;
    PacketSource& operator=(const PacketSource&) = delete;
    virtual ~PacketSource() = default;

    /// Adds the stream to a file whose header is not written yet.
    virtual AVStream& addTo(Muxer& muxer) const = 0;

    /// The unit of the packets' times.
    virtual AVRational timeBase() const = 0;

    /// The next packet in the order of decoding, or null at the end. The time of decoding rises.
    virtual av::Packet next() = 0;
};

/// What an encoder makes of frames.
class EncodedPackets final : public PacketSource {
   public:
    /// `frames` gives the next frame, its time in the encoder's time base, or null at the end. A picture
    /// shows for one unit of that.
    EncodedPackets(std::unique_ptr<Encoder> encoder, std::function<av::Frame()> frames)
        : encoder_(std::move(encoder)), frames_(std::move(frames)) {}

    AVStream& addTo(Muxer& muxer) const override { return muxer.add(encoder_->context()); }
    AVRational timeBase() const override { return encoder_->context().time_base; }
    av::Packet next() override;

   private:
    std::unique_ptr<Encoder> encoder_;
    std::function<av::Frame()> frames_;
    bool flushed_ = false;
};

}  // namespace vantle
