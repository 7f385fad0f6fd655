/// An output folder that exists under its name only when it is complete.
#pragma once

#include <filesystem>
#include <string_view>

#include "output/folder_contents.h"

namespace vantle {

/// A folder filled beside its target and renamed to it at the end; without `commit` it is removed and what
/// stood at the target stays. Until then only its owner may look into it; then it gets the rights of the
/// folder that it replaces.
class StagedFolder {
   public:
    /// Creates the empty folder beside `target`. Throws Error when the target holds anything and may not
    /// be overwritten, or holds anything but what was made there under the same `title` and is as it was
    /// made: what somebody else put there is never removed.
    StagedFolder(const std::filesystem::path& target, bool overwrite, std::string_view title);
    StagedFolder(const StagedFolder&) = delete;
    StagedFolder& operator=(const StagedFolder&) = delete;
    ~StagedFolder();

    /// Writes a file in the folder, `name` relative to it. May be called by several threads at once. Throws
    /// Error when that fails.
    void write(const std::filesystem::path& name, std::string_view contents);

    /// Gives the folder its name. Throws Error when that fails, or the target has come to hold something
    /// meanwhile and may not be overwritten, or holds something else by now.
    void commit();

   private:
    void refuseStrangers() const;
    void writeFile(const std::filesystem::path& name, std::string_view contents) const;
    void replace();
    void clearAway(const std::filesystem::path& old) const;

    std::filesystem::path target_;
    std::filesystem::path path_;  // empty once committed
    bool overwrite_;
    std::string_view title_;
    FolderContents made_;
};

}  // namespace vantle
