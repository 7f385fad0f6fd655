#include "output/staged_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "Host/error.h"
#include "output/staging.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

}  // namespace

StagedFile::StagedFile(fs::path target, bool overwrite) : target_(std::move(target)), overwrite_(overwrite) {
    std::error_code ignored;
    const fs::file_status status = fs::status(target_, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw Error(target_.string() + " is not a regular file");
    // A link that leads nowhere is there too.
    if (!overwrite_ && fs::exists(fs::symlink_status(target_, ignored))) refuseToReplace(target_);
    // A link stays one: the file that it leads to is replaced.
    if (fs::is_regular_file(status) && fs::is_symlink(target_, ignored)) target_ = fs::canonical(target_);
    std::string name = stagingName(target_);
    const int file = mkstemp(name.data());
    if (file < 0) failToWrite(target_, errno);
    close(file);
    path_ = name;
    if (overwrite_) rights_ = Rights::of(target_);
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : target_(std::move(other.target_)),
      path_(std::exchange(other.path_, fs::path())),
      overwrite_(other.overwrite_),
      rights_(std::move(other.rights_)) {}

StagedFile::~StagedFile() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
}

void StagedFile::commit() {
    // Only now: what is still being written is its owner's alone.
    if (std::optional<Rights> now = overwrite_ ? Rights::of(target_) : std::nullopt) rights_ = std::move(now);
    rights_.value_or(Rights::ofNew(0666)).giveTo(path_);
    const int error = overwrite_ ? (std::rename(path_.c_str(), target_.c_str()) == 0 ? 0 : errno)
                                 : renameToFree(path_, target_);
    if (error == EEXIST) refuseToReplace(target_);
    if (error != 0) failToWrite(target_, error);
    path_.clear();
}

}  // namespace vantle
