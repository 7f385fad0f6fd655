/// Kinds of video files, and the encoders for them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "media/canvas.h"
#include "media/encoder.h"
#include "timeline/film.h"

namespace vantle {

/// A video file format, with the encoders that suit it best.
struct MovieKind {
    std::string_view ending;
    const char* muxer;
    const char* videoEncoder;
    const char* audioEncoder;  ///< null: the format holds no audio
};

/// The kind of video with this ending (as ".mp4"), or null.
const MovieKind* movieKind(std::string_view ending);

/// How the file of a kind is to be written.
av::Options muxerOptions(const MovieKind& kind);

/// A video's encoders by FFmpeg's names; empty for those that suit the kind of file best.
struct EncoderNames {
    std::string video{};
    std::string audio{};
};

/// The options of a video's encoder: no loss that one sees, at the encoder's usual effort.
av::Options usualOptions(std::string_view encoder);

/// True when pictures for these encoders must have an even width and height. Throws UsageError when the kind
/// of file does not hold what the encoders make, or FFmpeg does not have them.
bool halvesChroma(const MovieKind& kind, const EncoderNames& encoders);

/// Opens the encoder for the pictures of a video whose sources have `colours`, which it keeps where it can.
/// `options` are the user's, which come first.
std::unique_ptr<Encoder> makeVideoEncoder(const MovieKind& kind, const EncoderNames& encoders,
                                          const Canvas& canvas, const Colours& colours,
                                          const av::Options& options, bool globalHeaders);

/// Opens the encoder for the audio of a video. It gets at least `bitRate` bits a second.
std::unique_ptr<Encoder> makeAudioEncoder(const MovieKind& kind, const EncoderNames& encoders,
                                          const AudioParameters& wish, std::int64_t bitRate,
                                          bool globalHeaders);

}  // namespace vantle
