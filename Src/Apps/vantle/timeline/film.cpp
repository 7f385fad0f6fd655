#include "timeline/film.h"

#include <algorithm>

namespace vantle {

double Film::lightAt(double frame) const {
    double light = 1.0;
    if (fadeIn > 0) light = std::min(light, frame / static_cast<double>(fadeIn));
    if (fadeOut > 0)
        light = std::min(light, (static_cast<double>(frames() - 1) - frame) / static_cast<double>(fadeOut));
    return std::clamp(light, 0.0, 1.0);
}

}  // namespace vantle
