// A number with the range that a user interface shows for it.
#pragma once

#include "foundation/urLinear/Range1d.h"

namespace nxSupport {

/// A value and its range. The range is for display, such as slider ends and fractions; values are not clamped.
///
/// The default range is empty: minimum 1, maximum 0.
class BoundedDouble {
public:
    BoundedDouble() noexcept = default;
    explicit BoundedDouble(double value) noexcept : value_(value) {}
    BoundedDouble(double value, urLinear::Range1d const& range) noexcept : BoundedDouble(value, range.min, range.max) {}
    BoundedDouble(double value, double minimum, double maximum) noexcept
        : value_(value), minimum_(minimum), maximum_(maximum) {}

    [[nodiscard]] double value() const noexcept { return value_; }
    operator double() const noexcept { return value_; }
    [[nodiscard]] double minValue() const noexcept { return minimum_; }
    [[nodiscard]] double maxValue() const noexcept { return maximum_; }
    [[nodiscard]] urLinear::Range1d range() const noexcept { return {minimum_, maximum_}; }

    void setValue(double value) noexcept { value_ = value; }
    void setRange(double minimum, double maximum) noexcept {
        minimum_ = minimum;
        maximum_ = maximum;
    }
    void setRange(urLinear::Range1d const& range) noexcept { setRange(range.min, range.max); }

    /// The position of `x` in the range: 0 at the minimum, 1 at the maximum. If minimum and maximum are equal, it is an
    /// infinity or not-a-number.
    [[nodiscard]] double fractionalValue(double x) const noexcept { return (x - minimum_) / (maximum_ - minimum_); }
    [[nodiscard]] double fractionalValue() const noexcept { return fractionalValue(value_); }

private:
    double value_ = 0.0;
    double minimum_ = 1.0;
    double maximum_ = 0.0;
};

}  // namespace nxSupport
