/// What photos say of themselves, by EXIF.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

#include "media/av.h"

namespace vantle {

/// When, where and with which camera a photo was taken, by the names that containers of video have for these:
/// `com.apple.quicktime.creationdate`, `location`, `make`, `model` and `software`. The date is that of a
/// local clock, with its time zone where that is known (2024-05-06T09:08:09.25+02:00). Empty where the file
/// at `path`, a JPEG or HEIF picture, does not say.
av::Options exifOf(const std::filesystem::path& path);

/// The same from a block of EXIF, which begins with `Exif` and two zeros.
av::Options exifIn(std::span<const std::uint8_t> block);

}  // namespace vantle
