#include "media/muxer.h"

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
    return *stream;
}

void Muxer::start(const av::Options& options) {
    av::Dictionary settings(options);
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
