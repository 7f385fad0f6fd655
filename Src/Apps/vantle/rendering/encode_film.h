/// Writes films, numbered pictures or one picture of a film, all of it drawn and encoded.
#pragma once

#include <cstdint>
#include <utility>

#include "output/output_kind.h"
#include "playing/open_film.h"
#include "rendering/render.h"

namespace vantle {

/// The frames that are wanted of a film, to before the second. Throws Error when there are none.
std::pair<std::int64_t, std::int64_t> wantedFrames(const RenderRequest& request, const Film& film);

/// Writes what is wanted of a film, and returns how many pictures that are.
std::int64_t encodeFilm(const RenderRequest& request, const OutputKind& kind, const OpenFilm& open);

}  // namespace vantle
