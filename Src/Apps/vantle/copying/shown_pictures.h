/// When the pictures of a film show of which some are copied.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "copying/stretches.h"

namespace vantle {

struct ShownPicture {
    std::int64_t time = 0;    ///< in the film's time base, from the film's start
    std::int64_t source = 0;  ///< copied: its time in its source; encoded: its frame
};

/// All pictures of a film, in the order in which they show.
struct ShownPictures {
    AVRational timeBase{};  ///< holds the times of frames and, where that can be, of copied pictures exactly
    std::vector<ShownPicture> pictures{};
    std::vector<std::int64_t> first{};  ///< by stretch: the place of its first picture among these
    std::int64_t end{};                 ///< when the last one ends

    /// The place of a stretch's picture by its `source`; none of others.
    std::optional<std::int64_t> find(std::size_t stretch, std::int64_t source) const;

    const ShownPicture& at(std::int64_t place) const { return pictures[static_cast<std::size_t>(place)]; }
    std::int64_t endOf(std::int64_t place) const {
        return place + 1 < std::ssize(pictures) ? at(place + 1).time : end;
    }
};

/// Pictures of clips whose pace is even show in frames of the film. Others show when they do in their
/// sources, but for the first of a stretch, which shows in the first frame of that.
ShownPictures shownPictures(const Film& film, const std::vector<Stretch>& stretches,
                            const std::vector<std::shared_ptr<const CodedPictures>>& pictures);

}  // namespace vantle
