/// How much of a film is copied.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "copying/stretch_encoder.h"
#include "playing/open_film.h"

namespace vantle {

enum class CopyMode : std::uint8_t { automatic, always, never };

/// What is copied of the film; without stretches when nothing is. Throws Error when not all that could be
/// copied is and `always` is asked for.
CopyPlan planCopies(const OpenFilm& open, CopyMode mode, const EncoderChoice& choice, const CopyTerms& terms);

/// What the film loses of its inputs, in a line for each. With copies it has as many bits as these, and those
/// of joins alone are drawn with 8.
std::vector<std::string> losses(const CopyPlan& plan);

}  // namespace vantle
