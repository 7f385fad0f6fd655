/// One stream of a media file, decoded.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>

#include "media/av.h"

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
    void bridgeJump(AVPacket& packet);
    bool statesLength() const;
    void checkLength() const;

    std::string name_;
    av::Input input_;
    av::Codec codec_;
    av::Packet packet_;
    int stream_ = -1;
    // In microseconds from the file's start. Recordings put one after the other start anew in the middle, and
    // damage makes times of another year: from such a jump on, a file plays on where it had come to.
    struct Times {
        std::int64_t shift = 0;                                           // added to what is read
        std::int64_t decoded = std::numeric_limits<std::int64_t>::min();  // of the last packet
    };
    std::map<int, Times> times_;  // by stream
    std::int64_t shift_ = 0;      // for what follows the last jump
    std::int64_t end_ = 0;        // of the pictures and sound read so far
    std::int64_t othersEnd_ = 0;  // of subtitles and the like
};

}  // namespace vantle
