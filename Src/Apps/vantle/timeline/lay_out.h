/// From what is asked for and what is known of the inputs to a film, every frame of it in its place.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Host/plugin.h"
#include "timeline/film.h"
#include "timeline/film_request.h"

namespace vantle {

/// Why a film cannot be made as it is asked for.
struct Complaint {
    std::string text;
    bool isUsage = false;  ///< the request makes no sense, whatever the inputs are
};

/// The rate of the first input that has one, else 30 per second.
AVRational commonRate(std::span<const Source> sources);

/// The transition of each meeting, none for a cut. One that is asked for as `random` is drawn from the
/// catalogue, never the same as a neighbour, and follows from the request's seed alone. What cannot be found
/// is a complaint, and a cut.
std::vector<std::optional<TransitionName>> chooseTransitions(const FilmRequest& request,
                                                             std::span<const Transition> catalogue,
                                                             std::vector<Complaint>& complaints);

struct LaidOut {
    Film film;
    std::vector<Complaint> complaints;  ///< when there are any, the film is none
    std::vector<std::string> notes;     ///< a line for whatever its user should know before
};

/// Lays a film out. `sources` are what is known of the shots' files, one for each shot, and `transitions`
/// those of the meetings.
LaidOut layOut(const FilmRequest& request, std::vector<Source> sources,
               std::vector<std::optional<TransitionName>> transitions);

}  // namespace vantle
