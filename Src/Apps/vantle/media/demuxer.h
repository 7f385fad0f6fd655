/// A media file as packets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "media/av.h"
#include "media/memory_file.h"
#include "media/opened_files.h"

namespace vantle {

/// Reads the packets of anything FFmpeg's libraries read, or of a generated source written `lavfi:GRAPH`.
/// All errors, and a file that ends before what its own index lists, throw Error with the input's name in
/// front.
class Demuxer {
   public:
    /// Opens and probes `name`. Throws Error when it cannot be read.
    explicit Demuxer(const std::string& name);

    const std::string& name() const { return name_; }
    AVFormatContext& container() const { return *input_; }
    AVStream& stream(int index) const { return *input_->streams[index]; }

    /// The stream of this type that a player would choose, if FFmpeg has a decoder for one. Covers and
    /// thumbnails are none.
    std::optional<int> best(AVMediaType type) const;

    /// True when there are streams of this type, whether or not they can be decoded.
    bool holds(AVMediaType type) const;

    /// Why there is no best stream of a type, pictures or audio, in words.
    std::string whyNone(AVMediaType type) const;

    /// Keeps the packets of this stream for `read` while those of another one are read.
    void use(int stream) { queues_[stream]; }

    /// The same, and passes over all other streams.
    void useAlone(int stream);

    /// Lets go of this stream's packets.
    void drop(int stream);

    /// The next packet of a stream that is in use, or null at the end. Times run on where a recording starts
    /// anew half way.
    av::Packet read(int stream);

    /// The next packet of any stream that is in use, or null at the end.
    av::Packet read();

    /// Goes to the last key packet of `stream` at or before `time`, in its time base, or in a format without
    /// an index to somewhere before it; all streams go on from about there. False when the input cannot do
    /// that; it is then where it was, or anywhere.
    bool seek(int stream, std::int64_t time);

    /// Opens the input once more, from its start.
    void reopen();

    /// True when times have jumped so far: then a time does not lead to its place in the file.
    bool jumped() const { return shift_ != 0; }

    /// The files that the input is read from, those of which it has not come to yet too.
    FileSet files() const;

    /// True for a format that knows where its packets lie and states how long it is.
    bool indexed() const;

    /// Packets that were read to be decoded, and those of them that are damaged, whoever finds it.
    struct Health {
        std::int64_t packets = 0;
        std::int64_t damaged = 0;
        std::string shortfall{};  // where a file without an index ended before the length it states
    };
    Health& health() { return health_; }
    const Health& health() const { return health_; }

   private:
    std::optional<int> find(AVMediaType type, bool decodable) const;
    [[noreturn]] void fail(const std::string& what) const;
    bool readOne();
    av::Packet taken(std::deque<av::Packet>& queue);
    bool readApart(int stream);
    void bridgeJump(AVPacket& packet);
    void passOverOthers();
    bool statesLength() const;
    void checkLength();
    std::optional<std::int64_t> listedBytes() const;
    void forget();

    std::string name_;
    std::unique_ptr<OpenedFiles> opened_ = std::make_unique<OpenedFiles>();
    std::unique_ptr<MemoryFile> memory_;  // what the input is read from, where that is no file
    av::Input input_;
    std::map<int, std::deque<av::Packet>> queues_;   // of the streams in use
    std::size_t waiting_ = 0;                        // bytes of their packets
    std::map<int, std::unique_ptr<Demuxer>> apart_;  // streams that are read on their own
    Health health_;
    bool ended_ = false;
    std::optional<int> alone_;  // the one stream that is read
    // In microseconds from the file's start. Recordings put one after the other start anew in the middle, and
    // damage makes times of another year: from such a jump on, a file plays on where it had come to.
    struct Times {
        std::int64_t shift = 0;                                           // added to what is read
        std::int64_t decoded = std::numeric_limits<std::int64_t>::min();  // of the last packet
    };
    std::map<int, Times> times_;                                     // by stream
    std::int64_t shift_ = 0;                                         // for what follows the last jump
    std::int64_t begin_ = std::numeric_limits<std::int64_t>::max();  // of the pictures and audio read so far
    std::int64_t end_ = 0;                                           // of the same
    std::int64_t othersEnd_ = 0;                                     // of subtitles and the like
};

}  // namespace vantle
