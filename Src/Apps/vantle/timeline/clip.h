/// The pictures of one input, brought to the canvas of a rendering.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "media/canvas.h"
#include "media/decoder.h"
#include "media/filters.h"

namespace vantle {

class Clip {
   public:
    /// Opens an input and decodes its first pictures. Throws Error when there are none.
    explicit Clip(const std::string& name);

    const std::string& name() const { return decoder_.name(); }

    /// The size at which a picture shows: upright, with square pixels.
    Size size() const;

    /// Pictures per second; 0/1 for a still.
    AVRational rate() const;

    /// True when the input never ends of itself: a single picture, or a generated source without an end.
    bool endless() const { return still_ || endlessSource_; }

    /// The length in seconds as the container states it; none for endless ones and where it does not.
    std::optional<double> statedSeconds() const;

    /// The first picture as decoded, for its colours. Only before `next`.
    const AVFrame& first() const { return *ahead_.front(); }

    /// Says what `next` gives: pictures for `canvas`, at most `limit` of them. To be called once, before.
    void start(const Canvas& canvas, std::optional<std::int64_t> limit);

    /// The next picture, or null at the end. A still gives the same one again and again.
    av::Frame next();

   private:
    av::Frame decode();
    std::int64_t shownFor(const AVFrame& frame) const;
    void filter(const AVFrame& like);
    bool isLikeFiltered(const AVFrame& frame) const;
    std::string graph(const AVFrame& like) const;
    Size shownSize(const AVFrame& frame) const;

    Decoder decoder_;
    std::deque<av::Frame> ahead_;  // decoded, and not yet given to the filters
    Canvas canvas_;
    std::optional<Filters> filters_;
    av::Frame filtered_;  // a picture of the form that the filters are made for
    av::Frame stillPicture_;
    std::optional<std::int64_t> left_;
    std::int64_t end_ = 0;  // of the last picture decoded, in the stream's time base
    bool still_ = false;
    bool endlessSource_ = false;
    bool drained_ = false;
};

/// The rate at which two inputs are joined: FROM's, else TO's, else 30 per second.
AVRational commonRate(const Clip& from, const Clip& to);

}  // namespace vantle
