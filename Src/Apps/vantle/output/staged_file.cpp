#include "output/staged_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Host/error.h"
#include "output/staging.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

// A file being written is called .NAME.vantle-RUN: all of one run have the same six letters, and one of them
// at least is locked. So what is left of a run that was killed is told from what is still being written.
constexpr std::string_view marker = ".vantle-";
constexpr std::size_t runLength = 6;

std::string newRun() {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    std::random_device random;
    std::string run;
    while (run.size() < runLength) run += letters[random() % letters.size()];
    return run;
}

std::string stagedName(const fs::path& target, const std::string& run) {
    return stagingName(target, std::string(marker) + run);
}

/// What a target of this name is written to: a link stays one, the file that it leads to is replaced.
fs::path resolved(const fs::path& target) {
    std::error_code ignored;
    return fs::is_symlink(target, ignored) && fs::is_regular_file(target, ignored) ? fs::canonical(target)
                                                                                   : target;
}

void checkFree(const fs::path& target, bool overwrite) {
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw Error(target.string() + " is not a regular file");
    // A link that leads nowhere is there too.
    if (!overwrite && fs::exists(fs::symlink_status(target, ignored))) refuseToReplace(target);
    checkTarget(resolved(target));
}

/// What stands in a folder of what runs were writing there.
struct Left {
    fs::path path;
    std::string stem;  // all before the run
    std::string run;
};

std::vector<Left> leftIn(const fs::path& folder) {
    std::vector<Left> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() <= marker.size() + runLength) continue;
        std::string stem = name.substr(0, name.size() - runLength);
        if (name.starts_with('.') && stem.ends_with(marker))
            found.push_back({entry->path(), std::move(stem), name.substr(name.size() - runLength)});
    }
    return found;
}

/// Removes from a folder what runs left there that were writing a file of one of these stems, and were
/// killed.
void clearDead(const fs::path& folder, const std::set<std::string>& stems) {
    const std::vector<Left> left = leftIn(folder);
    // One file of each run stays locked while the others are looked at: the run may just be beginning.
    std::map<std::string, Descriptor> runs;
    for (const Left& file : left)
        if (stems.contains(file.stem)) runs.try_emplace(file.run);
    for (const Left& file : left) {
        const auto run = runs.find(file.run);
        if (run == runs.end()) continue;
        Descriptor lock(open(file.path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        const bool isOwn =
            lock && fstat(lock.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid();
        if (!isOwn || flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
            runs.erase(run);
        else if (stems.contains(file.stem) && !run->second)
            run->second = std::move(lock);
    }
    for (const Left& file : left)
        if (runs.contains(file.run)) unlink(file.path.c_str());
}

}  // namespace

StagedFile::StagedFile(fs::path target, bool overwrite) : target_(std::move(target)), overwrite_(overwrite) {
    checkFree(target_, overwrite);
    target_ = resolved(target_);
    static std::string run = newRun();
    for (;; run = newRun()) {
        const std::string name = stagedName(target_, run);
        Descriptor file(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!file && errno == EEXIST) continue;
        if (!file) failToWrite(target_, errno);
        // A file system without locks keeps what a killed run left.
        flock(file.get(), LOCK_EX);
        struct stat status {};
        if (fstat(file.get(), &status) == 0 && status.st_nlink == 0) continue;  // taken for a dead run's
        path_ = name;
        lock_ = std::move(file);
        break;
    }
    if (overwrite_) rights_ = Rights::of(target_);
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : target_(std::move(other.target_)),
      path_(std::exchange(other.path_, fs::path())),
      overwrite_(other.overwrite_),
      lock_(std::move(other.lock_)),
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
    unlock();
}

void prepareTargets(std::span<const fs::path> targets, bool overwrite) {
    if (targets.empty()) return;
    for (const fs::path& target : targets) checkFree(target, overwrite);
    std::map<fs::path, std::set<std::string>> stems;  // by folder
    for (const fs::path& target : targets) {
        const fs::path staged = stagedName(resolved(target), std::string(runLength, 'X'));
        const std::string name = staged.filename().string();
        stems[folderOf(staged)].insert(name.substr(0, name.size() - runLength));
    }
    for (const auto& [folder, own] : stems) clearDead(folder, own);
    const StagedFile probe(targets.front(), overwrite);
}

}  // namespace vantle
