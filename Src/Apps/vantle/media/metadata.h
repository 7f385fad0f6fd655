/// What a file says of itself.
#pragma once

#include <map>
#include <string>

#include "media/av.h"

namespace vantle {

/// When, where and with which camera a file was recorded: `creation_time` (ISO 8601), `location` (ISO 6709),
/// `make`, `model`, `software`, and `creation_date`, which is local and has its time zone where
/// that is known. Whatever names the
/// file has for them; nothing else that it says, and nothing that is not a line of text.
std::map<std::string, std::string> recordingTags(const AVFormatContext& container);

/// The same under the names that readers of this kind of file know; `format` is FFmpeg's name of it.
av::Options tagsFor(const std::string& format, const std::map<std::string, std::string>& tags);

}  // namespace vantle
