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
    /// What it reads: numbers of filters before it, which the graph's inputs begin; the one before when
    /// empty.
    std::vector<std::size_t> inputs{};
};

/// The filters of a generated source's graph (what follows `lavfi:`), not ready to run. A graph that cannot
/// be read has none.
av::Graph parseGraph(const std::string& description);

/// Filters, most often a chain, with one input or several and one output, that of the last filter.
class Filters {
   public:
    /// For frames of the format of `like`, with times in `timeBase`. Throws Error when a filter is
    /// unknown or refuses its settings.
    Filters(const AVFrame& like, AVRational timeBase, const std::vector<Filter>& filters)
        : Filters(std::vector<const AVFrame*>{&like}, timeBase, filters) {}

    /// The same with an input for each of `likes`.
    Filters(const std::vector<const AVFrame*>& likes, AVRational timeBase,
            const std::vector<Filter>& filters);

    /// Gives an input of the graph its next frame.
    void push(av::Frame frame, std::size_t input = 0);

    /// Says that an input ends at `time`: when its last frame has been shown.
    void close(std::int64_t time, std::size_t input = 0);

    /// The next result, or null when the graph needs input first or has ended (see `ended`).
    av::Frame pull();

    /// As `pull`, in portions of exactly `samples` samples of audio (fewer at the end).
    av::Frame pullSamples(int samples);

    /// True once the graph has given its last result.
    bool ended() const { return ended_; }

   private:
    void addInput(const AVFrame& like, AVRational timeBase);
    AVFilterContext* add(const Filter& filter);
    av::Frame result(int code, av::Frame frame);

    struct Node {
        AVFilterContext* filter;
        unsigned outputsTaken;
    };

    av::Graph graph_;
    std::vector<Node> nodes_;
    AVFilterContext* sink_ = nullptr;
    bool ended_ = false;
};

}  // namespace vantle
