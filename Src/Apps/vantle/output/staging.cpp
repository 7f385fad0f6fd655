#include "output/staging.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

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

std::string stagingName(const fs::path& target) {
    // With the dots and the six letters shorter than any file system's longest name.
    constexpr std::size_t longestName = 120;
    std::string own = target.filename().string();
    if (own.size() > longestName) {
        // Some file systems take only whole characters: cut before a UTF-8 sequence, never within.
        std::size_t end = longestName;
        while (end > 0 && (static_cast<unsigned char>(own[end]) & 0xC0U) == 0x80U) --end;
        own.resize(end);
    }
    std::string name = fs::path(target).remove_filename() / ".";
    return name += own + ".XXXXXX";
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
    const int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return;
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
    close(file);
}

}  // namespace vantle
