/// What a program made in a folder, told apart from what people put there.
#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace vantle {

/// The files that a program made in a folder, and what each of them held. A file of the folder itself lists
/// them: the mark by which the folder is known again.
class FolderContents {
   public:
    static constexpr std::string_view markName = "made-by-vantle.txt";

    /// Nothing yet. `title` is the mark's first line, which says whose it is.
    explicit FolderContents(std::string_view title) : title_(title) {}

    /// Another file, its name relative to the folder. May be called by several threads at once.
    void add(const std::filesystem::path& name, std::string_view bytes);

    /// What the mark holds.
    std::string mark() const;

    /// Takes over what the mark of a folder lists; false when it has none that is whole and has this title.
    bool read(const std::filesystem::path& folder);

    /// All that `folder` holds beside what was made there and is as it was made: names relative to it, of a
    /// folder only its own. Throws Error when it cannot be read.
    std::vector<std::filesystem::path> strangersIn(const std::filesystem::path& folder) const;

    /// Removes from `folder` what was made there and is as it was made, then the folder if nothing else is in
    /// it; false when it stays.
    bool remove(const std::filesystem::path& folder) const;

   private:
    bool isFile(const std::filesystem::path& folder, const std::string& name) const;
    bool isFolder(const std::string& name) const;

    std::string_view title_;
    std::map<std::string, std::string> checksums_;  // by name
    std::mutex guard_;
};

}  // namespace vantle
