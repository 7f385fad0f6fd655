/// The pictures and the audio of an input as they lie in its file, coded.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Host/error.h"
#include "media/av.h"
#include "media/demuxer.h"
#include "media/orientation.h"
#include "media/parameter_sets.h"
#include "playing/input.h"

namespace vantle {

/// Why something cannot be copied and what would mend that, in a line that begins with the input's name.
class NotCopied : public Error {
    using Error::Error;
};

struct CodedPicture {
    std::int64_t time = 0;      ///< when it shows, in the stream's time base
    std::int64_t number = 0;    ///< of the film's frames from the first picture on, the one nearest to that
    std::int64_t end = 0;       ///< the same of the picture that shows next
    std::int64_t rank = 0;      ///< in the order in which pictures show, from 0; less where it is not shown
    bool randomAccess = false;  ///< decoding may begin here: what shows later does not refer back across it
    bool recovery = false;      ///< and if it begins here the pictures are to be counted anew (FreshStart)
};

/// Pictures of an input that may be copied, in the order in which they are decoded.
struct CodedPictures {
    int stream;
    NalCodec codec;
    av::Parameters parameters;
    std::vector<Bytes> parameterSets;              ///< of all its pictures
    std::vector<Bytes> headerSei;                  ///< kept beside its packets: about the file's own making
    std::optional<DisplayMatrix> displayMatrix{};  ///< how the container says they are turned
    AVRational timeBase;
    std::int64_t start = 0;  ///< when the first picture shows
    bool even = true;        ///< all lie at their frames, as nearly as the container can say
    std::vector<CodedPicture> pictures;
};

/// Reads all packets of a clip's pictures, and numbers them by frames of this rate. Throws NotCopied when
/// they cannot be copied.
CodedPictures codedPictures(const Input& input, AVRational rate);

/// Audio in AAC frames of 1024 samples that overlap by half: what a packet holds is heard in full only with
/// the one before it and the one after it.
struct CodedAudio {
    static constexpr int frameSamples = 1024;

    int stream;
    av::Parameters parameters;
    std::int64_t first = 0;  ///< the sample with which the first packet begins, from the input's time 0
    std::int64_t packets = 0;
};

/// Reads the times of all packets of an input's audio, which it has. Throws NotCopied when it cannot be
/// copied.
CodedAudio codedAudio(const Input& input);

inline Colours coloursOf(const AVCodecParameters& parameters) {
    return {parameters.color_primaries, parameters.color_trc, parameters.color_space, parameters.color_range};
}

/// A copy of a stream's description.
av::Parameters copyOf(const AVCodecParameters& parameters);

}  // namespace vantle
