/// The colours of a film.
#pragma once

#include <cstdint>

#include "media/palette.h"
#include "playing/open_film.h"

namespace vantle {

/// What reduces the film's frames from `first` to before `end` to 256 colours, chosen from some of them,
/// evenly spread, so that it takes as much memory for a long film as for a short one. Plays them once for
/// that.
Palettized paletteFor(const OpenFilm& open, std::int64_t first, std::int64_t end);

}  // namespace vantle
