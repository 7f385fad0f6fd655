/// The files that FFmpeg's libraries read for an input, whatever its name calls them.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include "media/av.h"

namespace vantle {

/// A file, under whichever names it stands.
struct FileIdentity {
    dev_t device;
    ino_t inode;

    /// That of the file at `path`, or none. A link is followed.
    static std::optional<FileIdentity> of(const std::filesystem::path& path);

    bool operator<(const FileIdentity& other) const {
        return std::tie(device, inode) < std::tie(other.device, other.inode);
    }
};

using FileSet = std::set<FileIdentity>;

/// Watches one input. It must stay where it is for as long as the input is open.
class OpenedFiles {
   public:
    OpenedFiles() = default;
    OpenedFiles(const OpenedFiles&) = delete;
    OpenedFiles& operator=(const OpenedFiles&) = delete;

    /// From here on notes what `input`, not yet opened, opens.
    void watch(AVFormatContext& input);

    /// Notes what an opened input opens only later, or out of sight: the pictures of a sequence, the files of
    /// a list, those that the filters of a generated source are told to read.
    void lookAhead(const AVFormatContext& input);

    /// Notes the file of this name, with protocols before it or without. True when it was not known yet.
    bool note(std::string_view url);

    const FileSet& found() const { return found_; }

   private:
    static int open(AVFormatContext* input, AVIOContext** file, const char* url, int flags,
                    AVDictionary** options);
    void noteList(const std::filesystem::path& list);
    void noteFilters(const std::string& description);

    decltype(AVFormatContext::io_open) open_ = nullptr;
    FileSet found_;
};

}  // namespace vantle
