/// What of a film is copied, packet by packet, and what is encoded.
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
#include "copying/shown_pictures.h"
#include "copying/stretches.h"
#include "playing/open_film.h"
#include "timeline/film.h"

namespace vantle {

struct CopyPlan {
    Film film{};
    std::vector<std::shared_ptr<const CodedPictures>> pictures{};  ///< by part; null where none can be copied
    std::size_t model = 0;                                         ///< the part that all others must be like
    std::vector<Stretch> stretches{};                              ///< none: nothing is copied
    ShownPictures shown{};
    std::vector<std::shared_ptr<const CodedAudio>> audio{};  ///< by part; null where it is not copied
    AudioPlan audioPlan{};                                   ///< without stretches all audio is encoded
    /// By part: why it is not copied, and what would mend it; empty when it is.
    std::vector<std::string> why{};
    std::vector<std::string> audioWhy{};  ///< why what of the audio is not copied
    std::string summary{};                ///< the same of all clips, in a line

    std::int64_t copied() const { return copiedFrames(stretches); }

    /// Whether a frame of an encoded stretch is compared with what was drawn: of long ones, those near the
    /// ends.
    bool isCompared(const Stretch& stretch, std::int64_t frame) const;

    /// How many frames of a part are copied.
    std::int64_t copiedOf(std::size_t part) const;

    const CodedPictures& modelPictures() const { return *pictures[model]; }

    /// What the film's pictures are like: those of the model.
    const Source& modelSource() const { return film.sourceOf(film.parts[model]); }

    /// How the film is stored: as the model was held, upright when nothing is copied.
    Orientation orientation() const { return stretches.empty() ? Orientation{} : modelSource().orientation; }

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

/// What may be copied of a film.
struct CopyTerms {
    bool audio = true;        ///< its audio: nobody asked for an encoder
    bool orientation = true;  ///< turned pictures: the kind of file can say that they are
};

/// Plans to copy what lies outside the joins of a film whose sources are `coded` so, where the others can be
/// encoded.
CopyPlan planCopy(const Film& film, const std::vector<CodedSource>& coded, const CopyTerms& terms,
                  const TryEncoding& tryEncoding);

}  // namespace vantle
