/// One stream of a media file, decoded.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "av.h"

namespace vantle {

/// Decodes the best video or sound stream of anything FFmpeg's libraries read, or of a generated source
/// written `lavfi:GRAPH`. All errors, and a file that ends before the length it states, throw Error with the
/// input's name in front.
class Decoder {
   public:
    /// Opens `name`. Throws Error when it cannot be read or holds no stream of this type.
    Decoder(const std::string& name, AVMediaType type);

    /// True when `name` can be read and holds a stream of this type.
    static bool has(const std::string& name, AVMediaType type);

    /// The next decoded frame, or null at the end.
    av::Frame next();

    const std::string& name() const { return name_; }
    AVFormatContext& container() const { return *input_; }
    AVStream& stream() const { return *input_->streams[stream_]; }
    const AVCodecContext& codec() const { return *codec_; }

    /// The length of the stream in seconds as its container states or estimates it, if it does.
    std::optional<double> statedSeconds() const;

   private:
    [[noreturn]] void fail(const std::string& what) const;
    void feed();
    void noteEnd(const AVPacket& packet);
    void checkLength() const;

    std::string name_;
    av::Input input_;
    av::Codec codec_;
    av::Packet packet_;
    int stream_ = -1;
    std::int64_t end_ = 0;  // of the packets read so far, of any stream; microseconds from the file's start
};

}  // namespace vantle
