/// A film with all it takes to play it.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "Host/plugin.h"
#include "playing/input.h"
#include "timeline/film.h"
#include "timeline/film_request.h"
#include "timeline/lay_out.h"

namespace vantle {

struct OpenFilm {
    Plugin plugin;
    std::vector<std::unique_ptr<Input>> inputs;  ///< of the film's sources
    LaidOut laid;
    std::vector<TransFunc*> transitions;  ///< of the joins; null where one is a cut

    const Film& film() const { return laid.film; }
    Input& inputOf(const Part& part) const { return *inputs[part.source]; }

    /// The files that all inputs are read from.
    FileSet files() const;

    /// Tells on standard error, in a line, of each input that is damaged or ends early.
    void reportDamage() const;
};

/// Loads the plug-in at `library`, or the installed one when that is empty, opens and measures all inputs, as
/// many at a time as there are cores, and lays the film out. Only the first two inputs stay open. Throws
/// Error for what cannot be loaded or read, and for transitions that nothing is called by; what else is wrong
/// is among the complaints.
OpenFilm openFilm(const FilmRequest& request, const std::string& library, bool quiet);

/// Throws the first complaint, if there is one, with the number of the others, or with `all` after these have
/// been told on standard error, in a line each.
void throwComplaints(const std::vector<Complaint>& complaints, bool all);

}  // namespace vantle
