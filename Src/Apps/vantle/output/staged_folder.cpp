#include "output/staged_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <string>
#include <system_error>

#include "Host/error.h"
#include "output/staging.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

/// `folder/` means `folder`.
fs::path withoutSlash(const fs::path& path) { return path.has_filename() ? path : path.parent_path(); }

}  // namespace

StagedFolder::StagedFolder(const fs::path& target, bool overwrite, std::span<const std::string_view> own)
    : target_(withoutSlash(target)), overwrite_(overwrite) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(target_, error);
    if (fs::exists(status)) {
        if (!fs::is_directory(status)) throw Error(target_.string() + " is not a folder");
        if (!overwrite_) refuseToReplace(target_);
        for (const fs::directory_entry& entry : fs::directory_iterator(target_, error))
            if (const std::string name = entry.path().filename(); std::ranges::find(own, name) == own.end())
                throw Error(target_.string() + " holds " + name +
                            ", which does not belong there; it is not overwritten");
        if (error) failToWrite(target_, error.value());
    }
    std::string name = stagingName(target_);
    if (mkdtemp(name.data()) == nullptr) failToWrite(target_, errno);
    chmod(name.c_str(), permitted(0777));
    path_ = name;
}

StagedFolder::~StagedFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
}

void StagedFolder::write(const fs::path& name, std::string_view contents) const {
    errno = 0;
    std::error_code ignored;
    fs::create_directories((path_ / name).parent_path(), ignored);
    std::ofstream out(path_ / name, std::ios::binary);
    out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    out.close();
    if (!out) failToWrite(target_ / name, errno);
}

void StagedFolder::commit() {
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_NOREPLACE) == 0) {
        path_.clear();
        return;
    }
    if (errno == EEXIST && !overwrite_) refuseToReplace(target_);
    // In one step, so that a folder stands there at every moment; the old one now has the staging name.
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) == 0) return;
    // A file system without such renames: an old gallery goes first.
    std::error_code error;
    if (fs::exists(target_, error)) {
        if (!overwrite_) refuseToReplace(target_);
        fs::remove_all(target_, error);
    }
    if (std::rename(path_.c_str(), target_.c_str()) != 0) failToWrite(target_, errno);
    path_.clear();
}

}  // namespace vantle
