/// The loudness of what a film is mixed of.
#pragma once

#include "playing/open_film.h"

namespace vantle {

/// Measures the audio of a film's parts, as many at a time as there are cores. With `level` it sets the
/// volumes of all, and of the music, so that they are heard equally loud; where music gives way, it finds
/// where it has to.
void measureLoudness(OpenFilm& open, bool level, bool quiet);

}  // namespace vantle
