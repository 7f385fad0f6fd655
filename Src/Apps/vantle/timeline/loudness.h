/// Loudness as EBU R128 measures it, and what follows from it for a film.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "timeline/film.h"

namespace vantle {

/// Of a piece of audio, in LUFS.
struct Loudness {
    double integrated = silence;      ///< of all of it, but for its pauses
    std::vector<double> momentary{};  ///< of the 400 ms before each tenth of a second, from the first on

    static constexpr double wanted = -16.0;     ///< at which films are heard
    static constexpr double mostRaised = 30.0;  ///< dB, so that what is nearly silent stays so
    static constexpr double silence = -70.0;    ///< what is no louder is not counted
};

/// The factor that brings audio to the wanted loudness, or as near as it may be raised.
double factorToLevel(const Loudness& loudness);

/// Where the inputs of a film are loud enough that music gives way: speech, and not the noise of a room.
/// Pauses as between words count too. `measured` is that of each part as it is in its source; of none where
/// it is not heard.
std::vector<LoudSpan> loudSpans(const Film& film, std::span<const std::optional<Loudness>> measured);

}  // namespace vantle
