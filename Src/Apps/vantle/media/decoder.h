/// A decoder of pictures or audio.
#pragma once

#include <cstdint>
#include <string>

#include "media/av.h"
#include "media/demuxer.h"

namespace vantle {

/// Turns packets of one stream into frames. Damaged packets are passed over and counted.
class Decoder {
   public:
    /// For packets of this stream, called `name` in errors; a `strict` one lets no damage pass, as in a still
    /// it would be all there is. Of `threads` 0 means as many as there are cores. Throws Error when FFmpeg
    /// has no decoder for it.
    Decoder(const AVStream& stream, std::string name, bool strict, int threads);

    /// Takes a packet, null for the end.
    void send(const AVPacket* packet);

    /// The next frame, or null when it needs packets first or has ended (see `ended`).
    av::Frame receive();

    /// True once the last frame is out.
    bool ended() const { return ended_; }

    /// Forgets all packets, to go on elsewhere in the stream.
    void flush();

    /// Packets passed over and pictures marred so far.
    std::int64_t damaged() const { return damaged_; }
    const AVCodecContext& context() const { return *codec_; }

   private:
    void pass(int code);

    std::string name_;
    av::Codec codec_;
    std::int64_t damaged_ = 0;
    bool strict_;
    bool ended_ = false;
};

/// The decoded frames of one stream of an input.
class StreamReader {
   public:
    /// Reads `stream` of `input`, which must outlive it, with so many threads (0: as many as there are
    /// cores). Throws Error when FFmpeg has no decoder for it.
    StreamReader(Demuxer& input, int stream, int threads = 0);
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;
    ~StreamReader() { input_.drop(stream_); }

    /// The next frame, or null at the end. Throws Error when they are encrypted, or more than a tenth of the
    /// input's packets are damaged.
    av::Frame next();

    /// To be called when the input has gone elsewhere.
    void flush();

    AVStream& stream() const { return input_.stream(stream_); }
    const AVCodecContext& codec() const { return decoder_.context(); }

   private:
    Demuxer& input_;
    int stream_;
    Decoder decoder_;
    std::int64_t flagged_ = 0;  // damaged packets that the container knows of
    std::int64_t damaged_ = 0;  // those that the input has heard of
};

}  // namespace vantle
