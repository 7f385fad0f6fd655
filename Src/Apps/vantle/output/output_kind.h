/// What an output's name asks for.
#pragma once

#include <filesystem>
#include <string>

#include "media/opened_files.h"
#include "output/movie_kind.h"

namespace vantle {

/// A video (with its kind), numbered pictures, or one picture.
struct OutputKind {
    const MovieKind* movie = nullptr;
    bool numbered = false;
    bool holdsAudio = false;
    bool evenSize = false;  ///< the pixel format halves the chroma: width and height must be even
};

/// The kind of output with this name, `-` for standard output. Throws UsageError when its ending is none that
/// can be written, or does not hold what the encoders make.
OutputKind outputKind(const std::string& name, const EncoderNames& encoders);

/// Throws Error when an output, or a file in the folder that it is, is one of those that `inputs` are read
/// from: it would replace what it is made of.
void checkSpared(const FileSet& inputs, const std::filesystem::path& output);

}  // namespace vantle
