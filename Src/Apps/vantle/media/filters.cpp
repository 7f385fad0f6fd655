#include "media/filters.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/mem.h>
}

#include <utility>

namespace vantle {

namespace {

// A pad list entry as the parser wants it: one end of the graph, under a name.
av::Pads pad(const std::string& name, AVFilterContext* filter, av::Pads next) {
    av::Pads pads(av::check(avfilter_inout_alloc(), "filters"));
    pads->name = av::check(av_strdup(name.c_str()), "filters");
    pads->filter_ctx = filter;
    pads->pad_idx = 0;
    pads->next = next.release();
    return pads;
}

}  // namespace

Filters::Filters(AVMediaType type, const std::vector<std::string>& sources, const std::string& description)
    : graph_(av::check(avfilter_graph_alloc(), "filters")) {
    const bool video = type == AVMEDIA_TYPE_VIDEO;
    const std::string what = "filters " + description;
    av::Pads outputs;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const std::string name = "in" + std::to_string(i);
        AVFilterContext* source = nullptr;
        av::check(avfilter_graph_create_filter(&source, avfilter_get_by_name(video ? "buffer" : "abuffer"),
                                               name.c_str(), sources[i].c_str(), nullptr, graph_.get()),
                  what);
        sources_.push_back(source);
        outputs = pad(name, source, std::move(outputs));
    }
    av::check(avfilter_graph_create_filter(&sink_, avfilter_get_by_name(video ? "buffersink" : "abuffersink"),
                                           "out", nullptr, nullptr, graph_.get()),
              what);
    // The parser takes the lists and leaves what it did not use.
    AVFilterInOut* openInputs = pad("out", sink_, nullptr).release();
    AVFilterInOut* openOutputs = outputs.release();
    const int code =
        avfilter_graph_parse_ptr(graph_.get(), description.c_str(), &openInputs, &openOutputs, nullptr);
    const av::Pads inputsLeft(openInputs);
    const av::Pads outputsLeft(openOutputs);
    av::check(code, what);
    av::check(avfilter_graph_config(graph_.get(), nullptr), what);
}

void Filters::push(std::size_t index, av::Frame frame) {
    const int code = av_buffersrc_add_frame(sources_[index], frame.get());
    // A graph that has all it wants closes its inputs; what still comes is not needed.
    if (code != AVERROR_EOF) av::check(code, "filters");
}

void Filters::close(std::size_t index, std::int64_t time) {
    av::check(av_buffersrc_close(sources_[index], time, 0), "filters");
}

av::Frame Filters::pull() {
    av::Frame frame = av::makeFrame();
    const int code = av_buffersink_get_frame(sink_, frame.get());
    return result(code, std::move(frame));
}

av::Frame Filters::pullSamples(int samples) {
    av::Frame frame = av::makeFrame();
    const int code = av_buffersink_get_samples(sink_, frame.get(), samples);
    return result(code, std::move(frame));
}

av::Frame Filters::result(int code, av::Frame frame) {
    ended_ = code == AVERROR_EOF;
    if (ended_ || code == AVERROR(EAGAIN)) return nullptr;
    av::check(code, "filters");
    return frame;
}

}  // namespace vantle
