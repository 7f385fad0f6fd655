#include "output/output_kind.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "output/picture_writer.h"

namespace vantle {

OutputKind outputKind(const std::string& name, const EncoderNames& encoders) {
    // What is piped into a player must be readable from its start on.
    std::string ending = name == "-" ? ".mkv" : std::filesystem::path(name).extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
    if (const MovieKind* const movie = movieKind(ending))
        return {movie, false, movie->audioEncoder != nullptr, halvesChroma(*movie, encoders)};
    if (!encoders.video.empty() || !encoders.audio.empty())
        throw UsageError("--encoder and --audio-encoder are for a video");
    if (pictureCodec(name) != AV_CODEC_ID_NONE)
        return {nullptr, !numberedName(name, 0).empty(), false, false};
    throw UsageError("cannot tell what to write from the name " + name +
                     ": it should end in .mp4, .mkv, .webm, .mov, .gif, .webp, .png or .jpg");
}

void checkSpared(const FileSet& inputs, const std::filesystem::path& output) {
    const auto check = [&](const std::filesystem::path& file) {
        if (const auto own = FileIdentity::of(file); own && inputs.contains(*own))
            throw Error(file.string() + " is an input; what is written needs another name");
    };
    check(output);
    std::error_code none;  // of what is no folder
    for (std::filesystem::recursive_directory_iterator entry(output, none), end; entry != end;
         entry.increment(none))
        check(entry->path());
}

}  // namespace vantle
