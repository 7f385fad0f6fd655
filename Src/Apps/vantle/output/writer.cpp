#include "output/writer.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "output/movie_writer.h"
#include "output/picture_writer.h"
#include "output/staged_file.h"

namespace vantle {

OutputKind outputKind(const std::string& name, const EncoderNames& encoders) {
    // What is piped into a player must be readable from its start on.
    std::string ending = name == "-" ? ".mkv" : std::filesystem::path(name).extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
    if (const MovieKind* const movie = movieKind(ending))
        return {movie, false, movie->soundEncoder != nullptr, halvesChroma(*movie, encoders)};
    if (!encoders.video.empty() || !encoders.sound.empty())
        throw UsageError("--encoder and --sound-encoder are for a video");
    if (pictureCodec(name) != AV_CODEC_ID_NONE)
        return {nullptr, !numberedName(name, 0).empty(), false, false};
    throw UsageError("cannot tell what to write from the name " + name +
                     ": it should end in .mp4, .mkv, .webm, .mov, .gif, .webp, .png or .jpg");
}

void checkReplaceable(const std::string& name, bool overwrite) {
    if (name != "-" && numberedName(name, 0).empty()) const StagedFile probe(name, overwrite);
}

void checkSpared(const std::string& input, const std::string& output) {
    std::error_code unknown;  // as of what is no file
    if (std::filesystem::equivalent(input, output, unknown))
        throw Error(output + " is an input; what is written needs another name");
}

std::unique_ptr<Writer> makeWriter(const OutputKind& kind, const WriterOptions& options) {
    return kind.movie != nullptr ? makeMovieWriter(*kind.movie, options) : makePictureWriter(options);
}

}  // namespace vantle
