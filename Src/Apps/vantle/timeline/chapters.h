/// A film's chapters: one for each of its inputs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "timeline/film.h"

namespace vantle {

struct Chapter {
    std::string title;       ///< of a file, its name without folder and ending
    std::int64_t first = 0;  ///< frames
    std::int64_t end = 0;    ///< the frame after the last

    bool operator==(const Chapter&) const = default;
};

/// The chapters of a film's frames from `first` to before `end`, counted from `first`. Each begins where its
/// input begins to show, with the join before it, and ends where the next does; those of no frame are left
/// out.
std::vector<Chapter> chaptersOf(const Film& film, std::int64_t first, std::int64_t end);

}  // namespace vantle
