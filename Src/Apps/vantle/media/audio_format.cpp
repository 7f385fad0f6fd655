#include "media/audio_format.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <array>

namespace vantle {

AudioFormat audioFormatOf(const AVCodecContext& encoder) {
    return {encoder.sample_rate, encoder.sample_fmt, encoder.ch_layout.nb_channels, encoder.frame_size};
}

Filter toFormat(const AudioFormat& format) {
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, format.channels);
    std::array<char, 64> name{};
    av_channel_layout_describe(&layout, name.data(), name.size());
    return {"aformat",
            {{"sample_fmts", av_get_sample_fmt_name(format.sampleFormat)},
             {"sample_rates", std::to_string(format.sampleRate)},
             {"channel_layouts", name.data()}}};
}

av::Frame silence(const AudioFormat& format, int samples) {
    av::Frame frame = av::makeFrame();
    frame->sample_rate = format.sampleRate;
    frame->format = format.sampleFormat;
    frame->nb_samples = samples;
    av_channel_layout_default(&frame->ch_layout, format.channels);
    av::check(av_frame_get_buffer(frame.get(), 0), "audio");
    av::check(av_samples_set_silence(frame->extended_data, 0, samples, format.channels, format.sampleFormat),
              "audio");
    return frame;
}

}  // namespace vantle
