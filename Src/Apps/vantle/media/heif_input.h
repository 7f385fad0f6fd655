/// HEIF pictures as inputs that FFmpeg's libraries read.
#pragma once

#include <memory>
#include <string>

#include "media/av.h"
#include "media/memory_file.h"

namespace vantle {

/// Decodes the picture of `name` into `memory`, which must outlive the input of one raw picture that is
/// returned. Throws Error when it cannot be read.
av::Input openHeif(const std::string& name, std::unique_ptr<MemoryFile>& memory);

}  // namespace vantle
