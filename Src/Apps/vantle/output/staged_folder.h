/// An output folder that exists under its name only when it is complete.
#pragma once

#include <filesystem>
#include <span>
#include <string_view>

namespace vantle {

/// A folder filled beside its target and renamed to it at the end; without `commit` it is removed and what
/// stood at the target stays.
class StagedFolder {
   public:
    /// Creates the empty folder beside `target`. Throws Error when the target exists and may not be
    /// overwritten, or holds anything but files or folders called as in `own`: what somebody else put there
    /// is never removed.
    StagedFolder(const std::filesystem::path& target, bool overwrite, std::span<const std::string_view> own);
    StagedFolder(const StagedFolder&) = delete;
    StagedFolder& operator=(const StagedFolder&) = delete;
    ~StagedFolder();

    const std::filesystem::path& path() const { return path_; }  ///< where to write

    /// Writes a file in the folder, `name` relative to it. Throws Error when that fails.
    void write(const std::filesystem::path& name, std::string_view contents) const;

    /// Gives the folder its name. Throws Error when that fails, or the target has come to exist meanwhile and
    /// may not be overwritten.
    void commit();

   private:
    std::filesystem::path target_;
    std::filesystem::path path_;  // once committed, what stood at the target before; it goes with this object
    bool overwrite_;
};

}  // namespace vantle
