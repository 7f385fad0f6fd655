/// The operands of `vantle render`: inputs, how they meet, and what belongs to each.
#pragma once

#include <string>
#include <vector>

#include "timeline/film_request.h"

namespace vantle {

/// Reads operands in order: `+NAME` says how the inputs around it meet, `key=value` from a closed set belongs
/// to the operand before it, all else is an input. `transitions` are taken in turn where no `+NAME` stands.
/// Throws UsageError when the operands make no sense. Returns a line for each transition that is not taken.
std::vector<std::string> parseOperands(FilmRequest& film, const std::vector<std::string>& operands,
                                       const std::vector<std::string>& transitions);

/// True for `key=value` from a closed set, which belongs to what it follows.
bool isSetting(const std::string& operand);

/// Reads one that stands behind the music: `in`, `out` or `volume`. Throws UsageError when it is none.
void setMusic(Music& music, const std::string& operand);

/// Throws UsageError when operands say how two inputs meet, which has no place where these are sorted.
void refuseMeetings(const std::vector<std::string>& operands);

/// Puts the inputs into the order in which a person counts: img2 before img10. Throws UsageError when
/// `operands` say how two of them meet.
void sortNaturally(FilmRequest& film, const std::vector<std::string>& operands);

}  // namespace vantle
