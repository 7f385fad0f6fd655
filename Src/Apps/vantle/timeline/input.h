/// One input of a film.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "media/canvas.h"
#include "media/decoder.h"
#include "media/demuxer.h"
#include "media/filters.h"

namespace vantle {

/// A still, a video, an image sequence or a generated source: what it is, and its pictures as decoded. It is
/// opened and probed once.
class Input {
   public:
    /// Opens an input and decodes its first pictures. Throws Error when there are none.
    explicit Input(const std::string& name);

    const std::string& name() const { return demuxer_.name(); }

    /// The first picture as decoded, for its colours.
    const AVFrame& first() const { return *first_; }

    /// The size at which a picture shows: upright, with square pixels.
    Size size() const { return shownSize(*first_); }
    Size shownSize(const AVFrame& picture) const;

    /// The filters that bring a picture upright, as a camera noted it.
    std::vector<Filter> upright(const AVFrame& picture) const;

    /// Pictures per second; 0/1 for a still.
    AVRational rate() const;

    AVRational timeBase() const { return reader_.stream().time_base; }

    bool still() const { return still_; }

    /// True when the input never ends of itself: a single picture, or a generated source without an end.
    bool endless() const { return still_ || endlessSource_; }

    /// The stream and the sample rate of its sound, if it has any.
    std::optional<int> soundStream() const { return soundStream_; }
    std::optional<int> soundSampleRate() const;

    /// The sample of its sound at which its first picture shows, counted from the input's time 0.
    std::int64_t startSample(int sampleRate) const {
        return av_rescale_q(first_->pts, timeBase(), {1, sampleRate});
    }

    /// The number of the first picture in the grid of `rate`, counted from the input's time 0.
    std::int64_t gridStart(AVRational rate) const { return gridNumber(first_->pts, rate); }

    /// The number of the picture that shows at `time`.
    std::int64_t gridNumber(std::int64_t time, AVRational rate) const;

    /// How many pictures the input has in the grid of `rate`, at least 1; not for endless ones. Measured
    /// once, from its packets, where these do not tell by decoding it.
    std::int64_t frames(AVRational rate);

    /// Makes `nextPicture` go on with the picture that shows at number `number` of the grid of `rate`, or
    /// earlier ones before it. With `sound`, a reader of the sound that is made next starts early enough.
    void start(std::int64_t number, AVRational rate, bool sound);

    /// The next picture as decoded, or null at the end.
    av::Frame nextPicture();

    Demuxer& demuxer() { return demuxer_; }

    /// What its user should hear of packets that were passed over, in a line; empty when there were none.
    std::string damageReport() const;

   private:
    av::Frame decode();
    std::int64_t shownFor(std::int64_t duration) const;
    std::int64_t measuredEnd();
    std::optional<std::int64_t> endOfPackets();
    bool seek(std::int64_t time);
    void restart();

    Demuxer demuxer_;
    StreamReader reader_;
    std::optional<int> soundStream_;
    std::deque<av::Frame> ahead_;  // decoded, and not yet given
    av::Frame first_;
    std::optional<std::int64_t> measuredEnd_;  // of the last picture, in the stream's time base
    std::int64_t end_ = 0;                     // of the last picture decoded
    bool atStart_ = true;                      // the first pictures are still to be given
    bool still_ = false;
    bool endlessSource_ = false;
};

/// The rate at which inputs are joined: that of the first that has one, else 30 per second.
AVRational commonRate(const Input& from, const Input& to);

}  // namespace vantle
