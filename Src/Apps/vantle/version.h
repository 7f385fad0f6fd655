/// Which vantle this is.
#pragma once

#include <string>

namespace vantle {

/// Version, commit if it was built in a checkout, and FFmpeg's libraries as they are loaded.
std::string versionText();

}  // namespace vantle
