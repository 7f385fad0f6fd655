/// The form in which sound is handed to an encoder.
#pragma once

#include <string>

#include "media/av.h"

namespace vantle {

/// How sound is to be made for an encoder.
struct SoundFormat {
    int sampleRate = 0;
    AVSampleFormat sampleFormat = AV_SAMPLE_FMT_NONE;
    std::string layout;    ///< channel layout by name, as "stereo"
    int frameSamples = 0;  ///< samples that each frame holds, but the last
};

}  // namespace vantle
