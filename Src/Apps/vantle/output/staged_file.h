/// An output file that exists under its name only when it is complete.
#pragma once

#include <filesystem>
#include <optional>
#include <span>

#include "output/staging.h"

namespace vantle {

/// A file written beside its target and renamed to it at the end; without `commit` it is removed and what
/// stood at the target stays. Until then only its owner may read it; then it gets the rights of the file that
/// it replaces.
class StagedFile {
   public:
    /// Creates the empty file beside `target`. Throws Error when the target exists and may not be
    /// overwritten, is no regular file, or its folder cannot be written.
    StagedFile(std::filesystem::path target, bool overwrite);
    StagedFile(StagedFile&& other) noexcept;
    StagedFile& operator=(StagedFile&&) = delete;
    ~StagedFile();

    const std::filesystem::path& path() const { return path_; }      ///< where to write
    const std::filesystem::path& target() const { return target_; }  ///< what it becomes

    /// Gives the file its name. Throws Error when that fails, or the target has come to exist meanwhile and
    /// may not be overwritten.
    void commit();

    /// Lets go of the lock that tells others that the file is being written; for all but the first of many,
    /// which stands for the others.
    void unlock() { lock_ = Descriptor(); }

   private:
    std::filesystem::path target_;
    std::filesystem::path path_;  // empty once committed or moved from
    bool overwrite_;
    Descriptor lock_;
    std::optional<Rights> rights_;  // of the file to replace
};

/// Throws what staging one of these files would throw, so that it is told before anything long begins. What a
/// program that was killed left of them, half written, is removed.
void prepareTargets(std::span<const std::filesystem::path> targets, bool overwrite);

}  // namespace vantle
