/// A media file being written.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "media/av.h"
#include "media/orientation.h"

namespace vantle {

/// Puts packets of encoders, or of other files, into a file. Every failure throws Error.
class Muxer {
   public:
    /// Writes to `url` (`file:PATH`, `pipe:1`) in a format by FFmpeg's name; `name` is what errors call it.
    Muxer(const std::string& url, const char* format, const std::string& name);

    /// True when encoders must put their headers beside the stream.
    bool wantsGlobalHeaders() const;

    /// Adds a stream for the packets of an encoder, which is set up already.
    AVStream& add(const AVCodecContext& encoder);

    /// Adds a stream for packets of this description, `rate` of them a second (0/1 for audio).
    AVStream& add(const AVCodecParameters& parameters, AVRational timeBase, AVRational rate);

    /// Notes how a player is to turn a stream's pictures.
    void turn(AVStream& stream, const DisplayMatrix& matrix);

    /// Notes when, where and with which camera it was recorded, by the names of recordingTags.
    void describe(const std::map<std::string, std::string>& tags);

    /// Adds a chapter, its times in `timeBase`. Only when all streams are added, to a format that has them.
    void addChapter(const std::string& title, std::int64_t start, std::int64_t end, AVRational timeBase);

    /// Writes the header, when all streams are added.
    void start(const av::Options& options);

    /// Writes a packet whose times are in `timeBase`; its contents are gone afterwards.
    void write(AVPacket& packet, const AVStream& stream, AVRational timeBase);

    /// Completes the file.
    void finish();

   private:
    /// By how many thousandths of a second the format shifts all times.
    std::int64_t delay() const;

    struct Close {
        void operator()(AVFormatContext* output) const {
            avio_closep(&output->pb);
            avformat_free_context(output);
        }
    };

    std::string writing_;
    std::unique_ptr<AVFormatContext, Close> output_;
};

}  // namespace vantle
