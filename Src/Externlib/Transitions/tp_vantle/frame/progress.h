/// How far a transition is, and the easings. The order of operations is part of the result: it decides the
/// last bit, and with it now and then a rounded size.
#pragma once

#include <cstdint>

namespace vantle {

inline constexpr double twoPi = 6.283185307179586;

/// 3u^2 - 2u^3: 0 to 1 with zero slope at both ends.
constexpr double easeCubic(double u) {
    const double square = u * u;
    return 3.0 * square - 2.0 * (u * square);
}

/// Position and duration of one call, made safe: the duration is finite and above 0, the position within
/// 0..duration. A position outside stands for the nearer end; values that are unusable, for the first frame.
class Progress {
   public:
    Progress(double duration, double position);

    /// The same with positions above the duration as they were given.
    Progress onward() const;

    /// The same with any usable position as it was given.
    Progress unbounded() const;

    /// True at the very end and beyond it, and wherever both values are given alike, usable or not.
    bool ended() const;

    double duration() const { return duration_; }

    double position() const { return position_; }

    /// position / duration, 0 to 1.
    double linear() const { return position_ / duration_; }

    /// (duration - position) / duration, 1 to 0.
    double linearLeft() const { return (duration_ - position_) / duration_; }

    /// (duration - position) * size / duration, in this order.
    double linearLeftOf(double size) const { return (duration_ - position_) * size / duration_; }

    /// The position eased by t - sin(2 pi t) / (2 pi), then by the cubic; in position units, 0 to duration.
    double easedPosition() const;

    /// The same as a fraction, 0 to 1.
    double eased() const { return easedPosition() / duration_; }

    /// What is left of it, 1 to 0.
    double easedLeft() const { return (duration_ - easedPosition()) / duration_; }

    /// `size` times the eased fraction: 0 at the start, `size` at the end.
    double easedPart(double size) const { return size * easedPosition() / duration_; }

    /// The same, rounded.
    std::int32_t easedSize(double size) const;

    /// `size` times what is left of the eased fraction, rounded: `size` at the start, 0 at the end.
    std::int32_t easedRemainder(double size) const;

    /// `size` times the linear fraction: size * position / duration, in this order.
    double linearPart(double size) const { return size * position_ / duration_; }

    /// The same, rounded.
    std::int32_t linearSize(double size) const;

    /// `size` times what is left of the linear fraction, rounded.
    std::int32_t linearRemainder(double size) const;

   private:
    /// Positions outside `lowest` to `highest` stand for the nearer of these.
    Progress(double duration, double position, double lowest, double highest);

    double givenDuration_;
    double givenPosition_;
    double duration_ = 1.0;
    double position_ = 0.0;
};

}  // namespace vantle
