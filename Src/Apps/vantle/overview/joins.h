/// All joins of a film on one picture.
#pragma once

#include <string>

#include "overview/contact_sheet.h"
#include "playing/open_film.h"

namespace vantle {

/// Draws a row of thumbnails for every join, as the film will show it, and writes the picture. Throws
/// UsageError when the film has no join or the picture would become too large.
void drawJoins(const OpenFilm& open, const std::string& output, bool overwrite, bool quiet);

}  // namespace vantle
