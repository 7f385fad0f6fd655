/// The sound of a rendering: that of both inputs, joined in step with the pictures.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "media/decoder.h"
#include "media/filters.h"
#include "media/sound_format.h"

namespace vantle {

/// The sample rate of an input's sound, if it has any.
std::optional<int> soundSampleRate(const std::string& name);

/// Sound of one input from its first picture on, without end: gaps and what follows are silent.
class SoundReader {
   public:
    /// An empty `name` reads silence.
    SoundReader(const std::string& name, const SoundFormat& format);

    /// The next `samples` samples.
    av::Frame read(int samples);

   private:
    void passOn();

    Decoder decoder_;
    SoundFormat format_;
    std::optional<Filters> converter_;  // from the decoded format to `format_`
    av::Frame like_;                    // a frame of the format that the converter is made for
    Filters timed_;                     // puts the converted sound into its place in time
    std::int64_t end_ = 0;              // of the sound converted so far, in samples
};

/// Joins the sound of two inputs that overlap as their pictures do. When both have sound it is crossfaded
/// over the overlap; when one has, it stays in its place and the rest is silent.
class Soundtrack {
   public:
    /// An empty name is an input without sound. Of the result only the output pictures `firstFrame` to
    /// `lastFrame` are wanted.
    Soundtrack(const std::string& from, const std::string& to, const SoundFormat& format,
               AVRational frameRate, std::int64_t overlapFrames, std::int64_t firstFrame,
               std::int64_t lastFrame);

    /// Allows sound for the first `frames` output pictures to be made.
    void advance(std::int64_t frames);

    /// Says how many pictures FROM has; known at the latest when its overlap begins.
    void endFrom(std::int64_t frames);

    /// Says that no sound beyond what `advance` allowed is needed.
    void finish();

    /// The next frame of the result, or null when it needs `advance` first or has ended.
    av::Frame pull() { return filters_->pullSamples(format_.frameSamples); }

   private:
    std::int64_t samples(std::int64_t frames) const;
    void feed(SoundReader& reader, std::size_t input, std::int64_t& fed, std::int64_t until);

    SoundFormat format_;
    AVRational frameRate_;
    bool crossfades_;
    bool fromHasSound_;
    std::int64_t overlapFrames_;
    std::int64_t fade_;  // samples
    SoundReader first_;
    SoundReader second_;
    std::optional<Filters> filters_;
    std::int64_t firstLength_ = std::numeric_limits<std::int64_t>::max();
    std::int64_t firstFed_ = 0;
    std::int64_t secondFed_ = 0;
    bool firstClosed_ = false;
};

}  // namespace vantle
