#include "output/writer.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "output/movie_writer.h"
#include "output/picture_writer.h"

namespace vantle {

OutputKind outputKind(const std::string& name) {
    std::string ending = std::filesystem::path(name).extension().string();
    std::ranges::transform(ending, ending.begin(), [](unsigned char c) { return std::tolower(c); });
    if (const MovieKind* const movie = movieKind(ending))
        return {movie, false, movie->soundEncoder != nullptr, movie->pixels == AV_PIX_FMT_YUV420P};
    if (pictureCodec(name) != AV_CODEC_ID_NONE)
        return {nullptr, !numberedName(name, 0).empty(), false, false};
    throw UsageError("cannot tell what to write from the name " + name +
                     ": it should end in .mp4, .mkv, .webm, .mov, .gif, .png or .jpg");
}

std::unique_ptr<Writer> makeWriter(const OutputKind& kind, const WriterOptions& options) {
    return kind.movie != nullptr ? makeMovieWriter(*kind.movie, options) : makePictureWriter(options);
}

}  // namespace vantle
