#include "output/staging.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "Host/error.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view accessList = "system.posix_acl_access";

constexpr mode_t groupRights = 0070;

/// The attributes of a file that say who may use it, and those that people gave it.
std::vector<std::pair<std::string, std::string>> attributesOf(const fs::path& path) {
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string names(XATTR_LIST_MAX, '\0');
    const ssize_t length = listxattr(path.c_str(), names.data(), names.size());
    names.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
        const std::string name = names.c_str() + at;
        if (name != accessList && !name.starts_with("user.")) continue;
        std::string value(XATTR_SIZE_MAX, '\0');
        const ssize_t size = getxattr(path.c_str(), name.c_str(), value.data(), value.size());
        if (size >= 0) attributes.emplace_back(name, value.substr(0, static_cast<std::size_t>(size)));
    }
    return attributes;
}

}  // namespace

void failToWrite(const fs::path& target, int error) {
    throw Error("cannot write " + target.string() + ": " + std::generic_category().message(error));
}

void refuseToReplace(const fs::path& target) {
    throw Error(target.string() + " exists; --force overwrites it");
}

fs::path folderOf(const fs::path& target) {
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

void checkTarget(const fs::path& target) {
    struct stat there {};
    if (lstat(target.c_str(), &there) != 0) {
        if (errno != ENOENT) failToWrite(target, errno);
        return;
    }
    // Rights to write the file itself are not needed, but one that never changes cannot be replaced either.
    if (access(target.c_str(), W_OK) != 0 && errno == EPERM) failToWrite(target, EPERM);
    // In a folder such as /tmp everybody replaces his own files only.
    struct stat folder {};
    const uid_t self = geteuid();
    if (stat(folderOf(target).c_str(), &folder) == 0 && (folder.st_mode & S_ISVTX) != 0 && self != 0 &&
        there.st_uid != self && folder.st_uid != self)
        failToWrite(target, EPERM);
}

std::string stagingName(const fs::path& target, std::string_view ending) {
    const fs::path folder = folderOf(target);
    const auto room = [&](int limit, std::size_t usual, std::size_t taken) {
        const long stated = pathconf(folder.c_str(), limit);
        const std::size_t all = stated > 0 ? static_cast<std::size_t>(stated) : usual;
        return all - std::min(all, taken);
    };
    // The dot before it, and the end of a path.
    const std::size_t around = ending.size() + 1;
    constexpr std::size_t longest = 120;  // shorter than most file systems' longest name
    std::string own = target.filename().string();
    const std::size_t end = std::min({longest, room(_PC_NAME_MAX, NAME_MAX, around),
                                      room(_PC_PATH_MAX, PATH_MAX, folder.native().size() + 2 + around)});
    if (own.size() > end) {
        // Some file systems take only whole characters: cut before a UTF-8 sequence, never within.
        std::size_t whole = end;
        while (whole > 0 && (static_cast<unsigned char>(own[whole]) & 0xC0U) == 0x80U) --whole;
        own.resize(whole);
    }
    return fs::path(target).remove_filename() / ("." + own).append(ending);
}

Descriptor::~Descriptor() {
    if (file_ >= 0) close(file_);
}

int renameToFree(const fs::path& from, const fs::path& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno == EEXIST) return EEXIST;
    // A file system that knows no such rename: looked up first, which is nearly as good.
    struct stat there {};
    if (lstat(to.c_str(), &there) == 0) return EEXIST;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

std::optional<Rights> Rights::of(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    Rights rights(status.st_mode & 07777U);
    rights.owner_.emplace(status.st_uid, status.st_gid);
    rights.attributes_ = attributesOf(path);
    return rights;
}

Rights Rights::ofNew(mode_t asked) {
    const mode_t mask = umask(0);
    umask(mask);
    return Rights(asked & ~mask);
}

void Rights::giveTo(const fs::path& path) const {
    // Not through a link that somebody else put there.
    const Descriptor opened(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!opened) return;
    const int file = opened.get();
    struct stat own {};
    fstat(file, &own);
    mode_t mode = mode_;
    if (!owner_) {
        mode |= own.st_mode & S_ISGID;  // of a folder whose group goes on to what is in it
    } else {
        const auto& [user, group] = *owner_;
        const bool sameGroup = own.st_gid == group || fchown(file, static_cast<uid_t>(-1), group) == 0;
        const bool sameUser = own.st_uid == user || fchown(file, user, static_cast<gid_t>(-1)) == 0;
        if (!sameUser) mode &= ~static_cast<mode_t>(S_ISUID);
        // Another group gets no more than everybody.
        if (!sameGroup) mode &= ~(S_ISGID | groupRights) | ((mode & 0007U) << 3U);
        for (const auto& [name, value] : attributes_)
            // The group's rights are the most that a list of users grants: without the list they are
            // nobody's.
            if (fsetxattr(file, name.c_str(), value.data(), value.size(), 0) != 0 && name == accessList)
                mode &= ~groupRights;
    }
    // A file system without rights refuses, and then there is nothing to keep.
    fchmod(file, mode);
}

}  // namespace vantle
