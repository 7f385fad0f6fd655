/// What staged files and staged folders have in common.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>

namespace vantle {

/// Throws the Error for a target that cannot be written, for this `errno`.
[[noreturn]] void failToWrite(const std::filesystem::path& target, int error);

/// Throws the Error for a target that exists and may not be overwritten.
[[noreturn]] void refuseToReplace(const std::filesystem::path& target);

/// The template of a hidden name beside `target`, as mkstemp and mkdtemp take it.
std::string stagingName(const std::filesystem::path& target);

/// The rights that any new file or folder gets of those asked for. mkstemp and mkdtemp leave them to the
/// owner.
mode_t permitted(mode_t asked);

}  // namespace vantle
