/// Transitions by kind, for whoever looks through them.
#pragma once

#include <string_view>

namespace vantle {

/// The family of the transition drawn by this function: "strips", "shapes", "warps" or "blends", and "other"
/// for one that is not known here.
std::string_view familyOf(std::string_view function);

}  // namespace vantle
