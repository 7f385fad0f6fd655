#include "timeline/chapters.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>

namespace vantle {

std::vector<Chapter> chaptersOf(const Film& film, std::int64_t first, std::int64_t end) {
    std::vector<Chapter> chapters;
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Source& source = film.sourceOf(film.parts[i]);
        const std::int64_t next = i + 1 < film.parts.size() ? film.parts[i + 1].start : film.frames();
        const std::int64_t from = std::max(film.parts[i].start, first);
        const std::int64_t to = std::min(next, end);
        if (from >= to) continue;
        // What generates pictures is a description, in which dots end nothing.
        const std::string title =
            source.generated ? source.name : std::filesystem::path(source.name).stem().string();
        chapters.push_back({title, from - first, to - first});
    }
    return chapters;
}

}  // namespace vantle
