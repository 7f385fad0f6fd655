/// Which AAC frames of a film's audio are copied, packet by packet, and which are encoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "copying/coded_stream.h"
#include "timeline/film.h"

namespace vantle {

/// Consecutive AAC frames of a film's audio, which lie on a grid that begins one AAC frame before it.
struct AudioStretch {
    std::int64_t first = 0;
    std::int64_t aacFrames = 0;
    std::optional<std::size_t> part{};  ///< from which it is copied
    std::int64_t source = 0;            ///< the first of its packets that is copied

    std::int64_t end() const { return first + aacFrames; }
};

struct AudioPlan {
    std::vector<AudioStretch> stretches;
    std::vector<std::int64_t> delays;  ///< by part, the samples by which its audio comes late on the grid
};

/// Plans to copy the AAC frames in which one part is heard alone and as it is. `audio` is that of each part,
/// null for one that is not heard as it is, or not at all.
AudioPlan planAudio(const Film& film, const std::vector<std::shared_ptr<const CodedAudio>>& audio);

}  // namespace vantle
