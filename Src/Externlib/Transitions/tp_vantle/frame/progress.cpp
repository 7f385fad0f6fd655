#include "frame/progress.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frame/rounding.h"

namespace vantle {

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();

}  // namespace

Progress::Progress(double duration, double position) : Progress(duration, position, 0.0, duration) {}

Progress::Progress(double duration, double position, double lowest, double highest)
    : givenDuration_(duration), givenPosition_(position) {
    if (!(std::isfinite(duration) && duration > 0.0 && std::isfinite(position))) return;
    duration_ = duration;
    position_ = std::min(std::max(position, lowest), highest);
    // The easings take the third power of the duration: outside this range it leaves the doubles.
    if (duration < 1e-100 || duration > 1e100) {
        position_ /= duration_;
        duration_ = 1.0;
    }
}

Progress Progress::onward() const { return {givenDuration_, givenPosition_, 0.0, unlimited}; }

Progress Progress::unbounded() const { return {givenDuration_, givenPosition_, -unlimited, unlimited}; }

bool Progress::ended() const { return givenPosition_ == givenDuration_ || position_ == duration_; }

double Progress::easedPosition() const {
    const double d = duration_;
    const double p = position_ - std::sin(position_ * twoPi / d) * d / twoPi;
    return (3.0 * d * p * p - 2.0 * p * p * p) / (d * d);
}

std::int32_t Progress::easedSize(double size) const { return rounded(easedPart(size)); }

std::int32_t Progress::easedRemainder(double size) const {
    return rounded((duration_ - easedPosition()) * size / duration_);
}

std::int32_t Progress::linearSize(double size) const { return rounded(linearPart(size)); }

std::int32_t Progress::linearRemainder(double size) const { return rounded(linearLeftOf(size)); }

}  // namespace vantle
