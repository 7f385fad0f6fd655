/// Outputs of a rendering: a video, numbered pictures or one picture, by the output's name.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "media/audio_format.h"
#include "media/av.h"
#include "media/canvas.h"
#include "media/convert.h"
#include "media/opened_files.h"
#include "timeline/film.h"

namespace vantle {

/// Takes pictures (and audio) in order. Nothing stands under the output's name before `finish` has returned,
/// and nothing of it stays when that is never called. Every failure to write throws Error.
class Writer {
   public:
    virtual ~Writer() = default;

    /// The format that pictures must have.
    virtual PictureFormat pictureFormat() const = 0;

    /// The next picture. `number` counts the pictures of the rendering from 0.
    virtual void write(av::Frame picture, std::int64_t number) = 0;

    /// Completes the output and gives it its name.
    virtual void finish() = 0;

    /// The format that audio must have; none for a writer without audio.
    virtual std::optional<AudioFormat> audioFormat() const { return {}; }

    /// The next samples of audio, in that format.
    virtual void writeAudio(av::Frame /*samples*/) {}
};

/// A video file format, with the encoders that suit it.
struct MovieKind;

/// What an output's name asks for: a video (with its kind), numbered pictures, or one picture.
struct OutputKind {
    const MovieKind* movie = nullptr;
    bool numbered = false;
    bool holdsAudio = false;
    bool evenSize = false;  ///< the pixel format halves the chroma: width and height must be even
};

/// A video's encoders by FFmpeg's names; empty for those that suit the kind of file best.
struct EncoderNames {
    std::string video{};
    std::string audio{};
};

/// The kind of output with this name, `-` for standard output. Throws UsageError when its ending is none that
/// can be written, or does not hold what the encoders make.
OutputKind outputKind(const std::string& name, const EncoderNames& encoders);

struct WriterOptions {
    std::string name;
    Canvas canvas{};
    const AVFrame* colours = nullptr;  ///< a picture whose description of its colours a video takes over
    std::optional<AudioParameters> audio{};
    bool overwrite = false;
    EncoderNames encoders{};
    av::Options encoderOptions{};  ///< for a video's encoder, as FFmpeg knows them
};

/// Throws Error when an output, or a file in the folder that it is, is one of those that `inputs` are read
/// from: it would replace what it is made of.
void checkSpared(const FileSet& inputs, const std::filesystem::path& output);

/// The writer for an output of a kind.
std::unique_ptr<Writer> makeWriter(const OutputKind& kind, const WriterOptions& options);

}  // namespace vantle
