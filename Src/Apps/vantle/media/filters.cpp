#include "media/filters.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/mem.h>
}

#include <memory>
#include <utility>

namespace vantle {

namespace {

struct Free {
    void operator()(void* memory) const { av_free(memory); }
};

}  // namespace

av::Graph parseGraph(const std::string& description) {
    av::Graph graph(av::check(avfilter_graph_alloc(), "filters"));
    AVFilterInOut* inputs = nullptr;
    AVFilterInOut* outputs = nullptr;
    avfilter_graph_parse2(graph.get(), description.c_str(), &inputs, &outputs);
    avfilter_inout_free(&inputs);
    avfilter_inout_free(&outputs);
    return graph;
}

Filters::Filters(const std::vector<const AVFrame*>& likes, AVRational timeBase,
                 const std::vector<Filter>& filters)
    : graph_(av::check(avfilter_graph_alloc(), "filters")) {
    for (const AVFrame* const like : likes) addInput(*like, timeBase);
    for (const Filter& filter : filters) add(filter);
    sink_ = add({likes.front()->width > 0 ? "buffersink" : "abuffersink"});
    av::check(avfilter_graph_config(graph_.get(), nullptr), "filters");
}

void Filters::addInput(const AVFrame& like, AVRational timeBase) {
    const bool video = like.width > 0;
    const std::unique_ptr<AVBufferSrcParameters, Free> parameters(
        av::check(av_buffersrc_parameters_alloc(), "filters"));
    parameters->format = like.format;
    parameters->time_base = timeBase;
    parameters->width = like.width;
    parameters->height = like.height;
    parameters->sample_aspect_ratio = like.sample_aspect_ratio;
    parameters->sample_rate = like.sample_rate;
#if LIBAVFILTER_VERSION_MAJOR >= 10
    parameters->color_space = like.colorspace;
    parameters->color_range = like.color_range;
#endif
    if (!video) av::check(av_channel_layout_copy(&parameters->ch_layout, &like.ch_layout), "filters");
    AVFilterContext* const source =
        av::check(avfilter_graph_alloc_filter(graph_.get(),
                                              avfilter_get_by_name(video ? "buffer" : "abuffer"), nullptr),
                  "filters");
    const int code = av_buffersrc_parameters_set(source, parameters.get());
    av_channel_layout_uninit(&parameters->ch_layout);
    av::check(code, "filters");
    av::check(avfilter_init_dict(source, nullptr), "filters");
    nodes_.push_back({source, 0});
}

AVFilterContext* Filters::add(const Filter& filter) {
    const std::string what = std::string("filter ") + filter.name;
    const AVFilter* const kind = avfilter_get_by_name(filter.name);
    if (kind == nullptr) throw Error(what + ": not in the FFmpeg libraries here");
    AVFilterContext* const context =
        av::check(avfilter_graph_alloc_filter(graph_.get(), kind, nullptr), what);
    av::Dictionary settings(filter.options);
    av::check(avfilter_init_dict(context, settings.get()), what);
    if (const std::string unknown = settings.left(); !unknown.empty())
        throw Error(what + ": has no option " + unknown);
    std::vector<std::size_t> inputs = filter.inputs;
    if (inputs.empty()) inputs.push_back(nodes_.size() - 1);
    for (unsigned pad = 0; const std::size_t input : inputs) {
        Node& node = nodes_.at(input);
        av::check(avfilter_link(node.filter, node.outputsTaken++, context, pad++), what);
    }
    nodes_.push_back({context, 0});
    return context;
}

void Filters::push(av::Frame frame, std::size_t input) {
    const int code = av_buffersrc_add_frame(nodes_.at(input).filter, frame.get());
    // A graph that has all it wants closes its input; what still comes is not needed.
    if (code != AVERROR_EOF) av::check(code, "filters");
}

void Filters::close(std::int64_t time, std::size_t input) {
    av::check(av_buffersrc_close(nodes_.at(input).filter, time, 0), "filters");
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
