/// What staged files and staged folders have in common.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantle {

/// Throws the Error for a target that cannot be written, for this `errno`.
[[noreturn]] void failToWrite(const std::filesystem::path& target, int error);

/// Throws the Error for a target that exists and may not be overwritten.
[[noreturn]] void refuseToReplace(const std::filesystem::path& target);

/// Throws Error when nothing can get the name of `target`: it is too long, or what stands there is not this
/// user's to replace.
void checkTarget(const std::filesystem::path& target);

/// The folder that holds `target`.
std::filesystem::path folderOf(const std::filesystem::path& target);

/// A hidden name beside `target`, which ends in `ending`. Of long names as much as there is room for.
std::string stagingName(const std::filesystem::path& target, std::string_view ending);

/// An open file, closed at the end.
class Descriptor {
   public:
    explicit Descriptor(int file = -1) : file_(file) {}
    Descriptor(Descriptor&& other) noexcept : file_(std::exchange(other.file_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~Descriptor();

    int get() const { return file_; }
    explicit operator bool() const { return file_ >= 0; }

   private:
    int file_;
};

/// Renames where nothing stands under the new name, and returns 0; or `errno`, EEXIST where something does.
int renameToFree(const std::filesystem::path& from, const std::filesystem::path& to);

/// Who may do what with a file or folder: its owner, its rights and the attributes that people gave it.
class Rights {
   public:
    /// Those of what stands at `path`, or none. A link is followed.
    static std::optional<Rights> of(const std::filesystem::path& path);

    /// Those that anything new gets of the rights asked for.
    static Rights ofNew(mode_t asked);

    /// Gives them to a file or folder that only its owner may use so far. Where this process may not give it
    /// to the owner or group, nobody gets more rights by that.
    void giveTo(const std::filesystem::path& path) const;

   private:
    explicit Rights(mode_t mode) : mode_(mode) {}

    mode_t mode_;
    std::optional<std::pair<uid_t, gid_t>> owner_;
    std::vector<std::pair<std::string, std::string>> attributes_;
};

}  // namespace vantle
