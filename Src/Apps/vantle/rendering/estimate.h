/// How long rendering a film takes and how large the film becomes, judged by a few of its frames.
#pragma once

#include <cstdint>
#include <optional>

#include "copying/copy_plan.h"
#include "output/movie_kind.h"
#include "playing/open_film.h"
#include "rendering/render.h"

namespace vantle {

struct Estimate {
    double seconds = 0.0;     ///< on this machine
    std::int64_t bytes = 0;   ///< of the film
    std::int64_t frames = 0;  ///< encoded on trial
};

/// Encodes a few frames of those that are not copied, for a second at most where encoding one takes no
/// longer. None when no frame is encoded.
std::optional<Estimate> estimateOf(const RenderRequest& request, const MovieKind& kind, const OpenFilm& open,
                                   const CopyPlan& plan);

}  // namespace vantle
