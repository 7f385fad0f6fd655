#include "output/folder_contents.h"

extern "C" {
#include <libavutil/hash.h>
}

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <system_error>

#include "media/av.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

/// SHA-256 in the digits of `sha256sum`.
class Checksum {
   public:
    Checksum() {
        AVHashContext* state = nullptr;
        av::check(av_hash_alloc(&state, "SHA256"), "checksum");
        state_.reset(state);
        av_hash_init(state);
    }

    void add(std::string_view bytes) {
        av_hash_update(state_.get(), reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }

    std::string text() {
        std::array<std::uint8_t, 2 * AV_HASH_MAX_SIZE + 1> digits{};
        av_hash_final_hex(state_.get(), digits.data(), static_cast<int>(digits.size()));
        return reinterpret_cast<const char*>(digits.data());
    }

   private:
    struct Free {
        void operator()(AVHashContext* state) const { av_hash_freep(&state); }
    };
    std::unique_ptr<AVHashContext, Free> state_;
};

/// Reads a regular file block by block; false when it is none or cannot be read.
template <typename Take>
bool readFile(const fs::path& path, const Take& take) {
    std::error_code ignored;
    if (!fs::is_regular_file(fs::symlink_status(path, ignored))) return false;
    std::ifstream file(path, std::ios::binary);
    std::array<char, 65536> block{};
    while (file.read(block.data(), block.size()) || file.gcount() > 0)
        take(std::string_view(block.data(), static_cast<std::size_t>(file.gcount())));
    return file.eof();
}

std::optional<std::string> textOf(const fs::path& path) {
    std::string text;
    if (!readFile(path, [&](std::string_view block) { text += block; })) return {};
    return text;
}

}  // namespace

void FolderContents::add(const fs::path& name, std::string_view bytes) {
    Checksum checksum;
    checksum.add(bytes);
    const std::scoped_lock lock(guard_);
    checksums_[name.string()] = checksum.text();
}

std::string FolderContents::mark() const {
    std::string text = std::string(title_) + "\n";
    for (const auto& [name, checksum] : checksums_) text.append(checksum).append("  ").append(name) += '\n';
    return text;
}

bool FolderContents::read(const fs::path& folder) {
    const std::optional<std::string> text = textOf(folder / markName);
    if (!text) return false;
    std::istringstream lines(*text);
    std::string line;
    std::getline(lines, line);
    std::string checksum;
    std::string name;
    while (lines >> checksum && std::getline(lines >> std::ws, name)) checksums_[name] = checksum;
    if (mark() == *text) return true;
    checksums_.clear();
    return false;
}

std::vector<fs::path> FolderContents::strangersIn(const fs::path& folder) const {
    std::vector<fs::path> strangers;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; entry != end; entry.increment(error)) {
        const fs::path name = entry->path().lexically_relative(folder);
        std::error_code ignored;
        const bool isOwn = fs::is_directory(entry->symlink_status(ignored)) ? isFolder(name.string())
                                                                            : isFile(folder, name.string());
        if (isOwn) continue;
        strangers.push_back(name);
        entry.disable_recursion_pending();
    }
    if (error) throw Error("cannot read " + folder.string() + ": " + error.message());
    std::ranges::sort(strangers);
    return strangers;
}

bool FolderContents::remove(const fs::path& folder) const {
    std::error_code ignored;
    std::set<fs::path, std::greater<>> folders;  // what lies deeper comes first
    for (const auto& [name, checksum] : checksums_) {
        if (isFile(folder, name)) fs::remove(folder / name, ignored);
        for (fs::path parent = fs::path(name).parent_path(); !parent.empty(); parent = parent.parent_path())
            folders.insert(parent);
    }
    // These remove no folder that holds anything.
    for (const fs::path& name : folders) fs::remove(folder / name, ignored);
    if (isFile(folder, std::string(markName))) fs::remove(folder / markName, ignored);
    return fs::remove(folder, ignored);
}

bool FolderContents::isFile(const fs::path& folder, const std::string& name) const {
    if (name == markName) return textOf(folder / name) == mark();
    const auto found = checksums_.find(name);
    if (found == checksums_.end()) return false;
    Checksum checksum;
    return readFile(folder / name, [&](std::string_view block) { checksum.add(block); }) &&
           checksum.text() == found->second;
}

bool FolderContents::isFolder(const std::string& name) const {
    const auto first = checksums_.lower_bound(name + "/");
    return first != checksums_.end() && first->first.starts_with(name + "/");
}

}  // namespace vantle
