/// One input of a film.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "media/canvas.h"
#include "media/decoder.h"
#include "media/demuxer.h"
#include "media/orientation.h"
#include "timeline/source.h"

namespace vantle {

/// A still, a video, an image sequence or a generated source: what it is, and its pictures as decoded. It is
/// opened and probed once; closed, it keeps what it is and opens again when it is started.
class Input {
   public:
    /// Opens an input, decodes its first pictures and measures it, unless it is endless. Throws Error when
    /// there are none.
    /// All its pictures are turned so after they have been brought upright.
    explicit Input(const std::string& name, Orientation turn = {});

    const std::string& name() const { return source_.name; }

    /// What is known of it.
    const Source& source() const { return source_; }

    /// The format and the colours of the first picture, without its pixels.
    const AVFrame& first() const { return *first_; }

    /// The size at which a picture shows: upright, with square pixels.
    Size shownSize(const AVFrame& picture) const;

    /// What brings a picture into how it shows: by itself or by its container, and by who asked for it.
    Orientation orientationOf(const AVFrame& picture) const;

    /// How the container, and who asked for it, say that all are turned.
    std::optional<DisplayMatrix> displayMatrix() const;

    AVRational timeBase() const { return source_.timeBase; }
    bool still() const { return source_.still; }

    /// The number of the picture that shows at `time` in a grid of `rate`, which begins with the first
    /// picture.
    std::int64_t gridNumber(std::int64_t time, AVRational rate) const;

    /// Makes `nextPicture` go on with the picture that shows at number `number` of the grid of `rate`, or
    /// earlier ones before it. With `audio`, a reader of the audio that is made next starts early enough.
    void start(std::int64_t number, AVRational rate, bool audio);

    /// The next picture as decoded, or null at the end. Only after `start`.
    av::Frame nextPicture();

    Demuxer& demuxer() { return opened_->demuxer; }

    /// The files that it is read from, as far as they are known.
    FileSet files() const { return opened_ ? opened_->demuxer.files() : files_; }

    /// Lets go of the file.
    void close();

    /// What was found to be wrong with it so far.
    Demuxer::Health health() const;

   private:
    struct Opened {
        Opened(const std::string& name, int threads);
        Demuxer demuxer;
        int stream;
        std::optional<StreamReader> reader;
        std::optional<Filters> deinterlacing;  // from the first interlaced picture on
        bool probing;                          // with one thread
        std::deque<av::Frame> ahead;           // decoded, and not yet given
        std::int64_t end = 0;                  // of the last picture decoded
        bool atStart = true;                   // the first pictures are still to be given
    };
    void open(int threads);
    av::Frame decode();
    av::Frame decodeStored();
    std::int64_t shownFor(std::int64_t duration) const;
    AVRational measuredRate();
    std::int64_t measuredEnd();
    std::optional<std::int64_t> endOfPackets();
    bool seek(std::int64_t time);
    void restart();

    Source source_;
    std::unique_ptr<Opened> opened_;
    FileSet files_;  // while it is closed
    av::Frame first_;
    std::optional<DisplayMatrix> displayMatrix_;  // as the container states it
    Orientation turn_;
    Demuxer::Health health_;  // while it was open before
};

}  // namespace vantle
