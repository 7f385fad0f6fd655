#include "output/staged_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
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
    fchmod(file, permitted(0666));
    close(file);
    path_ = name;
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : target_(std::move(other.target_)),
      path_(std::exchange(other.path_, fs::path())),
      overwrite_(other.overwrite_) {}

StagedFile::~StagedFile() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove(path_, ignored);
}

void StagedFile::commit() {
    int result = -1;
    if (!overwrite_) {
        result = renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE);
        if (result != 0 && errno == EEXIST) refuseToReplace(target_);
    }
    // Also where the file system knows no rename that refuses to replace.
    if (result != 0) result = std::rename(path_.c_str(), target_.c_str());
    if (result != 0) failToWrite(target_, errno);
    path_.clear();
}

}  // namespace vantle
