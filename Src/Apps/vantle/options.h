/// Options that mean the same in several commands.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "media/canvas.h"
#include "output/delivery.h"
#include "overview/overview.h"
#include "timeline/film_request.h"

namespace vantle {

// What an option's value is, its type name says: FILE, TRANSITION and the words themselves are completed by
// shells.

/// Accepts times as `parseTime` reads them, of up to `longest` seconds and not 0.
CLI::Validator aTime(double longest);

/// Reads a time that a validator has let through.
Time timeOf(const std::string& text);

/// How the inputs overlap: --duration, --fps, --fit.
void addOverlap(CLI::App& command, FilmRequest& film);

/// --size, which means what `meaning` says.
void addSize(CLI::App& command, std::optional<Size>& size, const std::string& meaning);

/// --size of a film.
void addFilmSize(CLI::App& command, FilmRequest& film);

/// --force, --quiet, --verbose, --plugin.
void addCommon(CLI::App& command, Delivery& delivery);

/// What the commands that show many transitions have in common; `output` says what they write.
void addOverview(CLI::App& command, OverviewOptions& options, const std::string& output);

}  // namespace vantle
