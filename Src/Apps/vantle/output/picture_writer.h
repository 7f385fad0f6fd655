/// Writes numbered pictures or one picture.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "media/canvas.h"
#include "media/convert.h"
#include "media/encoder.h"
#include "output/staged_file.h"

namespace vantle {

/// The encoder for a picture file of this name; AV_CODEC_ID_NONE when its ending is no picture's.
AVCodecID pictureCodec(const std::string& name);

/// The names of the pictures of these numbers.
std::vector<std::filesystem::path> pictureNames(const std::string& pattern, std::int64_t first,
                                                std::int64_t end);

/// `pattern` with the number in place of its %d; empty when it holds no such place.
std::string numberedName(const std::string& pattern, std::int64_t number);

/// Pictures in files of their own. None stands under its name before `finish` has returned, and nothing of
/// them stays when that is never called. Every failure to write throws Error.
class PictureWriter {
   public:
    /// `name` is a picture's, or a pattern of numbered ones.
    PictureWriter(std::string name, Size size, bool overwrite);

    /// The format that pictures must have.
    PictureFormat format() const;

    /// The next picture, with its number for a pattern.
    void write(av::Frame picture, std::int64_t number);

    /// Completes all files and gives them their names.
    void finish();

   private:
    void encode(const AVFrame* picture);

    std::string name_;
    bool overwrite_;
    Encoder encoder_;
    std::deque<StagedFile> files_;
    std::size_t written_ = 0;
};

}  // namespace vantle
