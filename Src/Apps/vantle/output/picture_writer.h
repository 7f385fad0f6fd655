/// Writes numbered pictures or one picture.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "output/writer.h"

namespace vantle {

/// The encoder for a picture file of this name; AV_CODEC_ID_NONE when its ending is no picture's.
AVCodecID pictureCodec(const std::string& name);

/// The names of the pictures of these numbers.
std::vector<std::filesystem::path> pictureNames(const std::string& pattern, std::int64_t first,
                                                std::int64_t end);

/// `pattern` with the number in place of its %d; empty when it holds no such place.
std::string numberedName(const std::string& pattern, std::int64_t number);

std::unique_ptr<Writer> makePictureWriter(const WriterOptions& options);

}  // namespace vantle
