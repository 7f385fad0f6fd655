#include "output/staged_folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Host/error.h"
#include "output/staging.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

/// `folder/` means `folder`.
fs::path withoutSlash(const fs::path& path) { return path.has_filename() ? path : path.parent_path(); }

/// A new folder beside `target` that only its owner may look into.
fs::path makeFolderBeside(const fs::path& target) {
    std::string name = stagingName(target, ".XXXXXX");
    if (mkdtemp(name.data()) == nullptr) failToWrite(target, errno);
    return name;
}

}  // namespace

StagedFolder::StagedFolder(const fs::path& target, bool overwrite, std::string_view title)
    : target_(withoutSlash(target)), overwrite_(overwrite), title_(title), made_(title) {
    if (const fs::path name = target_.filename(); name == "." || name == "..")
        throw Error(target_.string() + " is no name for a folder to make");
    checkTarget(target_);
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(target_, ignored))) refuseStrangers();
    path_ = makeFolderBeside(target_);
}

StagedFolder::~StagedFolder() {
    if (!path_.empty()) made_.remove(path_);
}

void StagedFolder::refuseStrangers() const {
    std::error_code ignored;
    if (!fs::is_directory(fs::symlink_status(target_, ignored)))
        throw Error(target_.string() + " is not a folder");
    if (!overwrite_ && !fs::is_empty(target_, ignored)) refuseToReplace(target_);
    FolderContents known(title_);
    const bool marked = known.read(target_);
    const std::vector<fs::path> strangers = known.strangersIn(target_);
    if (strangers.empty()) return;
    const std::string holds = target_.string() + " holds " + strangers.front().string();
    if (!marked)
        throw Error(holds + " and no " + std::string(FolderContents::markName) +
                    " that tells what may be replaced, as galleries have it; it is not overwritten");
    throw Error(holds + ", which somebody else put there or changed; it is not overwritten");
}

void StagedFolder::writeFile(const fs::path& name, std::string_view contents) const {
    errno = 0;
    std::error_code ignored;
    fs::create_directories((path_ / name).parent_path(), ignored);
    std::ofstream out(path_ / name, std::ios::binary);
    out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    out.close();
    if (out) return;
    const int error = errno;
    fs::remove(path_ / name, ignored);
    failToWrite(target_ / name, error);
}

void StagedFolder::write(const fs::path& name, std::string_view contents) {
    made_.add(name, contents);
    writeFile(name, contents);
}

void StagedFolder::commit() {
    writeFile(FolderContents::markName, made_.mark());
    std::error_code ignored;
    const bool replaces = fs::exists(fs::symlink_status(target_, ignored));
    if (replaces) refuseStrangers();
    const std::optional<Rights> rights = replaces ? Rights::of(target_) : std::nullopt;
    rights.value_or(Rights::ofNew(0777)).giveTo(path_);
    if (replaces) return replace();
    const int error = renameToFree(path_, target_);
    if (error == EEXIST) refuseToReplace(target_);
    if (error != 0) failToWrite(target_, error);
    path_.clear();
}

void StagedFolder::replace() {
    // In one step, so that a folder stands there at every moment; the old one then has the staging name.
    if (renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target_.c_str(), RENAME_EXCHANGE) == 0)
        return clearAway(std::exchange(path_, fs::path()));

    // A file system without such a rename: the old one steps aside, and back when something goes wrong.
    const fs::path aside = makeFolderBeside(target_);
    int error = std::rename(target_.c_str(), aside.c_str()) == 0 ? 0 : errno;
    if (error != 0) {
        rmdir(aside.c_str());
        failToWrite(target_, error);
    }
    error = renameToFree(path_, target_);
    if (error == 0) {
        path_.clear();
        return clearAway(aside);
    }
    if (renameToFree(aside, target_) == 0) failToWrite(target_, error);
    throw Error(target_.string() + " is in another's way; what stood there is in " + aside.string());
}

void StagedFolder::clearAway(const fs::path& old) const {
    FolderContents known(title_);
    known.read(old);
    // What came into it since it was looked through goes on to the new one. When it cannot, all is kept: then
    // somebody is at work in there.
    bool allOwn = true;
    try {
        for (const fs::path& name : known.strangersIn(old))
            allOwn = renameToFree(old / name, target_ / name) == 0 && allOwn;
    } catch (const Error&) {
        allOwn = false;
    }
    if (!allOwn || !known.remove(old))
        throw Error(target_.string() + " is complete; what else the folder before it held is in " +
                    old.string());
}

}  // namespace vantle
