/// Filter graphs of libavfilter between a decoder and what uses its frames.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "media/av.h"

namespace vantle {

/// One filter by its name, with its settings.
struct Filter {
    const char* name;
    av::Options options{};
    /// What it reads: numbers of filters before it, the graph's input being 0; the one before when empty.
    std::vector<std::size_t> inputs{};
};

/// The filters of a generated source's graph (what follows `lavfi:`), not ready to run. A graph that cannot
/// be read has none.
av::Graph parseGraph(const std::string& description);

/// Filters, most often a chain, with one input and one output, that of the last filter.
class Filters {
   public:
    /// For frames of the format of `like`, with times in `timeBase`. Throws Error when a filter is
    /// unknown or refuses its settings.
    Filters(const AVFrame& like, AVRational timeBase, const std::vector<Filter>& filters);

    /// Gives the graph its next frame.
    void push(av::Frame frame);

    /// Says that the input ends at `time`: when its last frame has been shown.
    void close(std::int64_t time);

    /// The next result, or null when the graph needs input first or has ended (see `ended`).
    av::Frame pull();

    /// As `pull`, in portions of exactly `samples` samples of audio (fewer at the end).
    av::Frame pullSamples(int samples);

    /// True once the graph has given its last result.
    bool ended() const { return ended_; }

   private:
    AVFilterContext* add(const Filter& filter);
    av::Frame result(int code, av::Frame frame);

    struct Node {
        AVFilterContext* filter;
        unsigned outputsTaken;
    };

    av::Graph graph_;
    std::vector<Node> nodes_;
    AVFilterContext* source_ = nullptr;
    AVFilterContext* sink_ = nullptr;
    bool ended_ = false;
};

}  // namespace vantle
