/// Filter graphs of libavfilter between a decoder and what uses its frames.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "media/av.h"

namespace vantle {

/// A graph with some inputs and one output.
class Filters {
   public:
    /// `sources` are the arguments of the inputs (of filter `buffer` or `abuffer`, by `type`), which
    /// `description` calls [in0], [in1], … and its result [out]. Throws Error when the graph makes no sense.
    Filters(AVMediaType type, const std::vector<std::string>& sources, const std::string& description);

    /// Gives input `index` its next frame.
    void push(std::size_t index, av::Frame frame);

    /// Says that input `index` ends at `time`, in its time base: when its last frame has been shown.
    void close(std::size_t index, std::int64_t time);

    /// The next result, or null when the graph needs input first or has ended (see `ended`).
    av::Frame pull();

    /// As `pull`, in portions of exactly `samples` samples of sound (fewer at the end).
    av::Frame pullSamples(int samples);

    /// True once the graph has given its last result.
    bool ended() const { return ended_; }

    /// The output, for its negotiated format.
    const AVFilterContext& sink() const { return *sink_; }

   private:
    av::Frame result(int code, av::Frame frame);

    av::Graph graph_;
    std::vector<AVFilterContext*> sources_;
    AVFilterContext* sink_ = nullptr;
    bool ended_ = false;
};

}  // namespace vantle
