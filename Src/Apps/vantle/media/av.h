/// Owning handles for the FFmpeg libraries, and their errors as exceptions.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

#include <map>
#include <memory>
#include <string>

#include "Host/error.h"

namespace vantle::av {

struct Delete {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

using Frame = std::unique_ptr<AVFrame, Delete>;
using Packet = std::unique_ptr<AVPacket, Delete>;
using Input = std::unique_ptr<AVFormatContext, Delete>;
using Codec = std::unique_ptr<AVCodecContext, Delete>;
using Parameters = std::unique_ptr<AVCodecParameters, Delete>;
using Graph = std::unique_ptr<AVFilterGraph, Delete>;
using Scaler = std::unique_ptr<SwsContext, Delete>;

/// What an error code means, in words.
inline std::string message(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = "";
    // Some decoders pass on codes of their own, which no table explains.
    return av_strerror(code, text, sizeof text) == 0 ? text : "damaged or unknown data";
}

/// `code`, or an Error that says `what` failed when it is negative.
inline int check(int code, const std::string& what) {
    if (code < 0) throw Error(what + ": " + message(code));
    return code;
}

/// `pointer`, or an Error when an allocation returned null.
template <typename T>
T* check(T* pointer, const std::string& what) {
    if (pointer == nullptr) throw Error(what + ": out of memory");
    return pointer;
}

inline Frame makeFrame() { return Frame(check(av_frame_alloc(), "frame")); }
inline Packet makePacket() { return Packet(check(av_packet_alloc(), "packet")); }

/// Names and values of settings, as FFmpeg knows them.
using Options = std::map<std::string, std::string>;

/// Settings on their way into one of FFmpeg's functions, which takes out those that it knows.
class Dictionary {
   public:
    explicit Dictionary(const Options& options) {
        for (const auto& [key, value] : options) av_dict_set(&entries_, key.c_str(), value.c_str(), 0);
    }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary() { av_dict_free(&entries_); }

    AVDictionary** get() { return &entries_; }

    /// The name of a setting that is left, empty when there is none.
    std::string left() const {
        const AVDictionaryEntry* const entry = av_dict_get(entries_, "", nullptr, AV_DICT_IGNORE_SUFFIX);
        return entry != nullptr ? entry->key : std::string();
    }

   private:
    AVDictionary* entries_ = nullptr;
};

/// Another reference to the same picture or samples.
inline Frame share(const AVFrame& frame) { return Frame(check(av_frame_clone(&frame), "frame")); }

}  // namespace vantle::av
