/// Writes a video file.
#pragma once

#include <memory>
#include <string_view>

#include "encoder.h"
#include "writer.h"

namespace vantle {

struct MovieKind {
    std::string_view ending;
    const char* muxer;
    const char* videoEncoder;
    Encoder::Options videoOptions;
    AVPixelFormat pixels;
    const char* soundEncoder;  ///< null: the format holds no sound
};

/// The kind of video with this ending (as ".mp4"), or null.
const MovieKind* movieKind(std::string_view ending);

std::unique_ptr<Writer> makeMovieWriter(const MovieKind& kind, const WriterOptions& options);

}  // namespace vantle
