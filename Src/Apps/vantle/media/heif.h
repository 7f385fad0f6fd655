/// Photos as telephones keep them: HEIF pictures (.heic, .avif), by libheif.
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "media/av.h"
#include "media/canvas.h"

namespace vantle {

/// True for a file of one picture, or of several with a main one, as HEIF keeps them.
bool isHeif(const std::filesystem::path& path);

/// A picture's pixels, line by line, upright.
struct HeifPicture {
    std::vector<std::uint8_t> pixels;
    Size size{};
    AVPixelFormat format = AV_PIX_FMT_NONE;
    Colours colours{};
};

/// The main picture of a file, composed of its tiles. Throws Error, without the file's name, when it cannot
/// be read.
HeifPicture readHeif(const std::filesystem::path& path);

/// The EXIF of the main picture, which begins with `Exif` and two zeros; empty when there is none.
std::vector<std::uint8_t> exifOfHeif(const std::filesystem::path& path);

}  // namespace vantle
