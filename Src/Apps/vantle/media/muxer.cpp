#include "media/muxer.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cstring>
#include <string_view>

#include "media/metadata.h"
#include "media/versions.h"

namespace vantle {

Muxer::Muxer(const std::string& url, const char* format, const std::string& name)
    : writing_("cannot write " + name) {
    AVFormatContext* output = nullptr;
    av::check(avformat_alloc_output_context2(&output, nullptr, format, url.c_str()), writing_);
    output_.reset(output);
    av::check(avio_open(&output->pb, url.c_str(), AVIO_FLAG_WRITE), writing_);
}

bool Muxer::wantsGlobalHeaders() const { return (output_->oformat->flags & AVFMT_GLOBALHEADER) != 0; }

AVStream& Muxer::add(const AVCodecContext& encoder) {
    AVStream* const stream = av::check(avformat_new_stream(output_.get(), nullptr), writing_);
    av::check(avcodec_parameters_from_context(stream->codecpar, &encoder), writing_);
    stream->time_base = encoder.time_base;
    stream->avg_frame_rate = encoder.framerate;
    return *stream;
}

AVStream& Muxer::add(const AVCodecParameters& parameters, AVRational timeBase, AVRational rate) {
    AVStream* const stream = av::check(avformat_new_stream(output_.get(), nullptr), writing_);
    av::check(avcodec_parameters_copy(stream->codecpar, &parameters), writing_);
    stream->time_base = timeBase;
    stream->avg_frame_rate = rate;
    stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    return *stream;
}

void Muxer::turn(AVStream& stream, const DisplayMatrix& matrix) {
    std::memcpy(av::check(av::newSideData(stream, AV_PKT_DATA_DISPLAYMATRIX, sizeof matrix), writing_),
                matrix.data(), sizeof matrix);
}

void Muxer::describe(const std::map<std::string, std::string>& tags) {
    for (const auto& [name, value] : tagsFor(output_->oformat->name, tags))
        av::check(av_dict_set(&output_->metadata, name.c_str(), value.c_str(), 0), writing_);
}

std::int64_t Muxer::delay() const {
    // Formats without negative times have all begin later by what an encoder of audio needs to begin.
    std::int64_t delay = 0;
    if ((output_->oformat->flags & AVFMT_TS_NEGATIVE) != 0) return delay;
    for (unsigned i = 0; i < output_->nb_streams; ++i)
        if (const AVCodecParameters& stream = *output_->streams[i]->codecpar; stream.sample_rate > 0)
            delay = std::max(
                delay, av_rescale_rnd(stream.initial_padding, 1000, stream.sample_rate, AV_ROUND_NEAR_INF));
    return delay;
}

void Muxer::addChapter(const std::string& title, std::int64_t start, std::int64_t end, AVRational timeBase) {
    // Freed with the format's context, as soon as that lists it.
    auto* const chapter = static_cast<AVChapter*>(av::check(av_mallocz(sizeof(AVChapter)), writing_));
    int count = static_cast<int>(output_->nb_chapters);
    if (const int added = av_dynarray_add_nofree(&output_->chapters, &count, chapter); added < 0) {
        av_free(chapter);
        av::check(added, writing_);
    }
    output_->nb_chapters = static_cast<unsigned>(count);
    chapter->id = count;  // from 1: 0 is none in Matroska
    // Never before its frame: containers keep thousandths.
    chapter->time_base = {1, 1000};
    const auto place = [&](std::int64_t time) {
        return av_rescale_q_rnd(time, timeBase, chapter->time_base, AV_ROUND_UP) + delay();
    };
    chapter->start = place(start);
    chapter->end = place(end);
    av::check(av_dict_set(&chapter->metadata, "title", title.c_str(), 0), writing_);
}

void Muxer::start(const av::Options& options) {
    av::Options wanted = options;
    // Without it the muxer leaves out all tags but a few: of .mp4 even make and model.
    const std::string_view format = output_->oformat->name;
    if ((format == "mp4" || format == "mov") && output_->metadata != nullptr)
        wanted["movflags"] += "+use_metadata_tags";
    av::Dictionary settings(wanted);
    av::check(avformat_write_header(output_.get(), settings.get()), writing_);
}

void Muxer::write(AVPacket& packet, const AVStream& stream, AVRational timeBase) {
    packet.stream_index = stream.index;
    av_packet_rescale_ts(&packet, timeBase, stream.time_base);
    av::check(av_interleaved_write_frame(output_.get(), &packet), writing_);
}

void Muxer::finish() {
    av::check(av_write_trailer(output_.get()), writing_);
    av::check(output_->pb->error, writing_);
    av::check(avio_closep(&output_->pb), writing_);
}

}  // namespace vantle
