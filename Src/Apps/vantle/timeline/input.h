/// One input of a film.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "media/canvas.h"
#include "media/decoder.h"
#include "media/demuxer.h"
#include "media/filters.h"

namespace vantle {

/// A still, a video, an image sequence or a generated source: what it is, and its pictures as decoded. It is
/// opened and probed once; closed, it keeps what it is and opens again when it is started.
class Input {
   public:
    /// Opens an input and decodes its first pictures. Throws Error when there are none.
    explicit Input(const std::string& name);

    const std::string& name() const { return name_; }

    /// The form and the colours of the first picture, without its pixels.
    const AVFrame& first() const { return *first_; }

    /// The size at which a picture shows: upright, with square pixels.
    Size size() const { return shownSize(*first_); }
    Size shownSize(const AVFrame& picture) const;

    /// The filters that bring a picture upright, as a camera noted it.
    std::vector<Filter> upright(const AVFrame& picture) const;

    /// Pictures per second, that of a standard within a thousandth of it; 0/1 for a still.
    AVRational rate() const { return rate_; }

    AVRational timeBase() const { return timeBase_; }

    bool still() const { return still_; }

    /// True when the input never ends of itself: a single picture, or a generated source without an end.
    bool endless() const { return still_ || endlessSource_; }

    /// Its sound, if it has any that can be decoded.
    struct Sound {
        int stream = 0;
        int sampleRate = 0;
        int channels = 0;
    };
    const std::optional<Sound>& sound() const { return sound_; }

    /// What of it is left out, and why; empty when nothing is.
    const std::string& leftOut() const { return leftOut_; }

    /// The sample of its sound at which its first picture shows, counted from the input's time 0.
    std::int64_t startSample(int sampleRate) const {
        return av_rescale_q(first_->pts, timeBase_, {1, sampleRate});
    }

    /// The number of the picture that shows at `time` in a grid of `rate`, which begins with the first
    /// picture.
    std::int64_t gridNumber(std::int64_t time, AVRational rate) const;

    /// How many pictures the input has in the grid of `rate`, at least 1; not for endless ones. Measured
    /// once, from its packets; where these do not tell, by decoding it.
    std::int64_t frames(AVRational rate);

    /// Makes `nextPicture` go on with the picture that shows at number `number` of the grid of `rate`, or
    /// earlier ones before it. With `sound`, a reader of the sound that is made next starts early enough.
    void start(std::int64_t number, AVRational rate, bool sound);

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
        bool probing;                 // with one thread
        std::deque<av::Frame> ahead;  // decoded, and not yet given
        std::int64_t end = 0;         // of the last picture decoded
        bool atStart = true;          // the first pictures are still to be given
    };
    void open(int threads);
    const std::int32_t* matrixOf(const AVFrame& picture) const;
    av::Frame decode();
    std::int64_t shownFor(std::int64_t duration) const;
    std::int64_t measuredEnd();
    std::optional<std::int64_t> endOfPackets();
    bool seek(std::int64_t time);
    void restart();

    std::string name_;
    std::unique_ptr<Opened> opened_;
    FileSet files_;  // while it is closed
    av::Frame first_;
    std::optional<std::array<std::int32_t, 9>> displayMatrix_;  // as the container states it
    AVRational timeBase_{};
    AVRational rate_{};
    std::optional<Sound> sound_;
    std::string leftOut_;
    std::optional<std::int64_t> measuredEnd_;  // of the last picture, in the stream's time base
    Demuxer::Health health_;                   // while it was open before
    bool still_ = false;
    bool endlessSource_ = false;
};

/// The rate at which inputs are joined: that of the first that has one, else 30 per second.
AVRational commonRate(std::span<const std::unique_ptr<Input>> inputs);

/// All files that inputs are read from.
FileSet filesOf(std::span<const std::unique_ptr<Input>> inputs);

/// Tells on standard error, in a line, of each input that is damaged or ends early.
void reportDamage(std::span<const std::unique_ptr<Input>> inputs);

}  // namespace vantle
