/// Finding transitions by the words that people have for them, whatever a catalogue calls them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Host/plugin.h"

namespace vantle {

/// Edits (insert, delete, replace) that turn one text into the other, letters taken without case: the
/// Levenshtein distance.
std::size_t editsBetween(std::string_view a, std::string_view b);

/// The transitions that somebody may have meant who asked for one by a name that none has, the likeliest
/// first, three at most.
std::vector<const Transition*> likely(std::span<const Transition> catalogue, std::string_view wanted);

/// The words by which people look for a transition and which its name and its sentence do not hold.
std::vector<std::string_view> wordsFor(const Transition& transition);

/// Whether a transition is found by `search`: that is a part of one of its names, or each word of it begins a
/// word of its name, its family, its sentence or those that people have for it.
bool isFoundBy(const Transition& transition, std::string_view search);

}  // namespace vantle
