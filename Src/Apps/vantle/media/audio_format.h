/// The format of audio.
#pragma once

#include <cstdint>
#include <string>

#include "media/av.h"
#include "media/filters.h"

namespace vantle {

struct AudioFormat {
    int sampleRate = 0;
    AVSampleFormat sampleFormat = AV_SAMPLE_FMT_NONE;
    int channels = 2;
    int frameSamples = 0;  ///< samples that an encoder takes at a time, but the last; 0: any number
};

/// What an encoder of audio takes.
AudioFormat audioFormatOf(const AVCodecContext& encoder);

/// The filter that brings audio to a format.
Filter toFormat(const AudioFormat& format);

/// New audio of a format, silent.
av::Frame silence(const AudioFormat& format, int samples);

}  // namespace vantle
