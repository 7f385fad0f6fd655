/// From pictures as decoded to the canvas of a film.
#pragma once

#include <vector>

#include "media/canvas.h"
#include "media/filters.h"
#include "playing/input.h"

namespace vantle {

/// Where a picture lies on a canvas.
struct Box {
    int x = 0;
    int y = 0;
    Size size{};
};

/// Where a picture that would show at `size` lies: whole in the middle, or all over the canvas.
Box boxOf(Size size, const Canvas& canvas);

/// The filters that bring a picture of an input, and others of its form, upright onto the canvas, in ordinary
/// colours.
std::vector<Filter> filtersOnto(const Canvas& canvas, const Input& input, const AVFrame& picture);

}  // namespace vantle
