/// How the view moves over a still.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vantle {

/// What is seen of a picture: a part of its shape, as shares of its width and its height.
struct View {
    double left = 0.0;
    double top = 0.0;
    double size = 1.0;  ///< of both

    bool operator==(const View&) const = default;
};

/// From one view to another, evenly.
struct Motion {
    View from{};
    View to{};

    /// The view at `position`, 0 to 1. It lies within the picture where both ends do.
    View at(double position) const;

    bool operator==(const Motion&) const = default;
};

/// A slow motion for the `number`th part of a film, which shows for `seconds`: closer, farther or along. It
/// follows from the film's seed alone.
Motion slowMotion(std::uint32_t seed, std::size_t number, double seconds);

}  // namespace vantle
