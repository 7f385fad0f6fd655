/// Writes a video file.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "media/encoder.h"
#include "output/writer.h"

namespace vantle {

struct MovieKind {
    std::string_view ending;
    const char* muxer;
    const char* videoEncoder;
    std::span<const std::pair<const char*, const char*>> videoOptions;
    AVPixelFormat pixels;
    const char* soundEncoder;  ///< null: the format holds no sound
};

/// The kind of video with this ending (as ".mp4"), or null.
const MovieKind* movieKind(std::string_view ending);

std::unique_ptr<Writer> makeMovieWriter(const MovieKind& kind, const WriterOptions& options);

}  // namespace vantle
