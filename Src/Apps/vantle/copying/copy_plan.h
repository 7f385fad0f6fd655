/// Which frames of a film are copied, packet by packet, and which are encoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "copying/audio_plan.h"
#include "copying/coded_stream.h"
#include "playing/open_film.h"
#include "timeline/film.h"

namespace vantle {

/// Consecutive frames of a film, copied from one of its parts or encoded.
struct Stretch {
    std::int64_t first = 0;
    std::int64_t frames = 0;
    std::optional<std::size_t> part{};  ///< from which it is copied
    bool isSeam = false;  ///< it is encoded, is short and holds parts only that are copied around it

    std::int64_t end() const { return first + frames; }
};

/// How many frames of these are copied.
std::int64_t copiedFrames(const std::vector<Stretch>& stretches);

struct CopyPlan {
    Film film;
    std::vector<std::shared_ptr<const CodedPictures>> pictures;  ///< by part; null where none can be copied
    std::size_t model = 0;                                       ///< the part that all others must be like
    std::vector<Stretch> stretches;
    std::vector<std::shared_ptr<const CodedAudio>> audio;  ///< by part
    AudioPlan audioPlan;                                   ///< without stretches all audio is encoded
    std::vector<std::string> refusals;  ///< why an input is not copied, and what would mend it
    std::vector<std::string> noClips;   ///< the same of stills and generated inputs: no news

    std::int64_t copied() const { return copiedFrames(stretches); }

    /// Whether a frame of an encoded stretch is compared with what was drawn: of long ones, those near the
    /// ends.
    bool isCompared(const Stretch& stretch, std::int64_t frame) const;

    const CodedPictures& modelPictures() const { return *pictures[model]; }

    /// The description of the audio that is copied.
    const AVCodecParameters& modelAudio() const;
};

/// What a file holds of one of a film's sources.
struct CodedSource {
    std::shared_ptr<const CodedPictures> pictures{};  ///< null where they cannot be copied
    std::string refusal{};                            ///< why not
    std::shared_ptr<const CodedAudio> audio{};        ///< null where it cannot be copied
};

/// Looks through the packets of all of a film's sources, of which each file is read once.
std::vector<CodedSource> scanSources(const OpenFilm& open);

/// Throws NotCopied when what a plan does not copy cannot be encoded like what it copies.
using TryEncoding = std::function<void(const CopyPlan&)>;

/// Plans to copy what lies outside the joins of a film whose sources are `coded` so, where the others can be
/// encoded. With `keepsAudio` its audio may be copied too: nobody asked for an encoder.
CopyPlan planCopy(const Film& film, const std::vector<CodedSource>& coded, bool keepsAudio,
                  const TryEncoding& tryEncoding);

}  // namespace vantle
