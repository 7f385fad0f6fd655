/// `vantle list`: shows the transitions of a plug-in.
#pragma once

#include <filesystem>

namespace vantle {

/// Writes index, name, function, family and GUID of every transition to standard output, as a table or as
/// JSON.
void list(const std::filesystem::path& plugin, bool json);

}  // namespace vantle
