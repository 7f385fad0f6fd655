#include "frame/progress.h"

#include <algorithm>
#include <cmath>

#include "frame/rounding.h"

namespace vantle {

Progress::Progress(const TransParam* param, Range range) {
    if (param == nullptr) return;
    const double duration = param->dDuration;
    const double position = param->dPosition;
    if (!(std::isfinite(duration) && duration > 0.0 && std::isfinite(position))) return;
    duration_ = duration;
    position_ = range == Range::any ? position : std::max(position, 0.0);
    if (range == Range::within) position_ = std::min(position_, duration);
    // The easings take the third power of the duration: outside this range it leaves the doubles.
    if (duration < 1e-100 || duration > 1e100) {
        position_ /= duration_;
        duration_ = 1.0;
    }
}

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

bool hasEnded(const TransParam* param) {
    if (param == nullptr) return false;
    const Progress progress(param);
    return param->dPosition == param->dDuration || progress.position() == progress.duration();
}

}  // namespace vantle
