/// Which frames of a film are copied, packet by packet, and which are encoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "copying/coded_stream.h"
#include "timeline/film.h"

namespace vantle {

/// Consecutive frames of a film, copied from one of its parts or encoded. What is copied shows when it does
/// in its source, be that at more or fewer pictures than there are frames; its first picture shows in its
/// first frame.
struct Stretch {
    std::int64_t first = 0;
    std::int64_t frames = 0;
    std::optional<std::size_t> part{};  ///< from which it is copied
    bool isSeam = false;  ///< it is encoded, is short and holds parts only that are copied around it
    std::int64_t rank{};  ///< copied: of its first picture among those of its source
    std::int64_t pictures{};

    std::int64_t end() const { return first + frames; }
};

/// How many frames of these are copied.
std::int64_t copiedFrames(const std::vector<Stretch>& stretches);

/// So many seconds in frames.
std::int64_t framesIn(int seconds, AVRational rate);

/// Lays copied stretches into a film, as much of each part as can be. `pictures` are those of each part, null
/// where none can be copied; to `why`, by part, is added why less of one is copied than could be.
std::vector<Stretch> layStretches(const Film& film,
                                  const std::vector<std::shared_ptr<const CodedPictures>>& pictures,
                                  std::vector<std::string>& why);

}  // namespace vantle
