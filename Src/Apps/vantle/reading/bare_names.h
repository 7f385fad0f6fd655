/// Names of transitions that were written as if they were files.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "Host/plugin.h"

namespace vantle {

/// Throws UsageError when operands of which there is no file make up a transition's name, alone or behind a
/// `+NAME` or one of `transitions`: it lacks the sign or its quotes.
void refuseBareNames(const std::vector<std::string>& operands, const std::vector<std::string>& transitions,
                     std::span<const Transition> catalogue);

}  // namespace vantle
