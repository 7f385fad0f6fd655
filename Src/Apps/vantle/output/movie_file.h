/// Writes a video file.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "media/muxer.h"
#include "media/packet_source.h"
#include "output/movie_kind.h"
#include "output/staged_file.h"
#include "timeline/chapters.h"

namespace vantle {

/// A video file in the making: nothing stands under its name before `commit`, and nothing of it stays when
/// that is never called. Every failure to write throws Error.
class MovieFile {
   public:
    /// Of this name, `-` for standard output.
    MovieFile(const MovieKind& kind, const std::string& name, bool overwrite);

    /// True when encoders must put their headers beside the stream.
    bool wantsGlobalHeaders() const { return muxer_.wantsGlobalHeaders(); }

    /// Notes, before anything is written, what the file says of itself: when, where and with which camera it
    /// was recorded, and its chapters, counted in frames of `rate`.
    void describe(const std::map<std::string, std::string>& tags, const std::vector<Chapter>& chapters,
                  AVRational rate);

    /// Writes all of these packets, side by side in time, so that neither stream waits in memory for the
    /// other; `audio` may be null. `written` is told the number of pictures so far.
    void write(PacketSource& pictures, PacketSource* audio, const av::Options& muxerOptions,
               const std::function<void(std::int64_t)>& written);

    /// Where the file is until `commit`; not for standard output.
    std::string path() const { return file_->path().string(); }

    /// Gives the file its name.
    void commit();

   private:
    std::optional<StagedFile> file_;  // none for standard output
    Muxer muxer_;
    std::vector<Chapter> chapters_;
    AVRational rate_{1, 1};  // in which they are counted
};

}  // namespace vantle
