/// Why a file is none that can be read.
#pragma once

#include <filesystem>
#include <string>

namespace vantle {

/// What a regular file is in which FFmpeg's libraries found nothing that they know, by what it begins with:
/// words that go on after its name.
std::string whyUnreadable(const std::filesystem::path& file);

}  // namespace vantle
