/// What a film will be, told before it is rendered.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "copying/copy_plan.h"
#include "rendering/estimate.h"
#include "timeline/film.h"

namespace vantle {

/// Prints every input and join of a film with its frames, which frames are copied and why others are not,
/// what rendering it takes, and what its user should know before, to standard output: as a table, or as JSON.
void printPlan(const CopyPlan& plan, const std::optional<Estimate>& estimate,
               const std::vector<std::string>& notes, bool json);

}  // namespace vantle
