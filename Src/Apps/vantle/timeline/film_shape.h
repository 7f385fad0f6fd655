/// The size and the rate of a film, chosen for all that it shows.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "media/canvas.h"

namespace vantle {

/// What a film's size and rate follow from: one of its inputs.
struct Showing {
    Size size{};
    AVRational rate{};     ///< 0/1 for a still
    double seconds = 0.0;  ///< for how long it shows
    /// Whether its packets can be copied where size and rate are the film's; none for what is no clip.
    std::optional<bool> copyable{};
};

/// What is asked for.
struct ShapeWish {
    std::optional<Size> size{};
    int lines = 0;  ///< of a picture of 16:9, as 1080, or of its columns where the film is upright
    std::optional<AVRational> rate{};
    bool isVideo = false;  ///< no larger than players take
    bool copies = false;   ///< what can be copied counts
};

struct FilmShape {
    Size size{};
    AVRational rate{};
    std::string why{};  ///< in a line; empty where the inputs agree, or all is asked for
};

/// Chooses what is not asked for. The size is the largest that at least a quarter of what has the film's most
/// common shape is at least as large as; the rate is the highest that more than a tenth of the film has, a
/// standard one of at most 60. Where all clips may be copied, those are chosen with which most of the film
/// is, if that is more than half of it.
FilmShape chooseShape(std::span<const Showing> inputs, const ShapeWish& wish);

}  // namespace vantle
