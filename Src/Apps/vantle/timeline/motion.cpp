#include "timeline/motion.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace vantle {

View Motion::at(double position) const {
    const auto between = [&](double a, double b) { return std::lerp(a, b, std::clamp(position, 0.0, 1.0)); };
    return {between(from.left, to.left), between(from.top, to.top), between(from.size, to.size)};
}

Motion slowMotion(std::uint32_t seed, std::size_t number, double seconds) {
    constexpr double perSecond = 0.03;  // of the picture: slower than what moves by itself
    constexpr double most = 0.16;       // enlarged further, most pictures have no more to show
    const double way = std::min(perSecond * seconds, most);
    // The same numbers everywhere: distributions of the standard library are not.
    std::mt19937 random(seed + 0x9E3779B9U * static_cast<std::uint32_t>(number + 1));
    const auto share = [&] { return static_cast<double>(random()) / 4294967296.0; };
    const double size = 1.0 - way;
    const auto kind = static_cast<int>(3.0 * share());
    if (kind < 2) {
        Motion motion{{}, {way * share(), way * share(), size}};
        if (kind == 1) std::swap(motion.from, motion.to);
        return motion;
    }
    // Along, from one side to the other, and a little up or down.
    Motion motion{{0.0, way * share(), size}, {way, way * share(), size}};
    if (share() < 0.5) std::swap(motion.from, motion.to);
    return motion;
}

}  // namespace vantle
