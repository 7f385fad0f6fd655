/// Inputs in the order in which they were recorded.
#pragma once

#include <string>
#include <vector>

#include "timeline/film_request.h"

namespace vantle {

/// Puts the inputs into the order in which they were taken, as they say themselves; those of the same moment
/// stay as they stand. One that does not say counts from when its file was last changed, of which a line is
/// returned. Throws UsageError for an input that is no file, and when `operands` say how two of them meet.
std::vector<std::string> sortByDate(FilmRequest& film, const std::vector<std::string>& operands);

}  // namespace vantle
