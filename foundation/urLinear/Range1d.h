// Intervals of numbers.
#pragma once

#include <algorithm>

#include "foundation/ur/Export.h"
#include "foundation/urLinear/Tolerance.h"

namespace urLinear {

/// The numbers from `min` to `max`, both included; empty unless `min` is at most `max`. Empty by default. A plain value
/// that stores the ends as given.
struct NX_API Range1d {
    double min = 1;
    double max = 0;

    constexpr Range1d() = default;
    /// The range of one number.
    constexpr explicit Range1d(double value) : min(value), max(value) {}
    constexpr Range1d(double minimum, double maximum) : min(minimum), max(maximum) {}

    [[nodiscard]] constexpr bool empty() const { return !(min <= max); }
    [[nodiscard]] constexpr bool contains(double value) const { return min <= value && value <= max; }
    /// 0 when empty.
    [[nodiscard]] constexpr double length() const { return empty() ? 0 : max - min; }
    /// The number of the range that is nearest to `value`; `value` itself when the range is empty.
    [[nodiscard]] constexpr double clamp(double value) const { return empty() ? value : std::clamp(value, min, max); }

    /// Extends just enough to contain `value`. Ignores NaN.
    constexpr void include(double value) { include(Range1d(value)); }
    constexpr void include(Range1d const& other) {
        if (other.empty()) return;
        *this = empty() ? other : Range1d(std::min(min, other.min), std::max(max, other.max));
    }

    bool operator==(Range1d const&) const = default;
};

/// Compares the stored ends, also of empty ranges.
[[nodiscard]] inline bool equivalent(Range1d const& a, Range1d const& b, double tolerance = epsilonTol) {
    return equivalent(a.min, b.min, tolerance) && equivalent(a.max, b.max, tolerance);
}

static_assert(sizeof(Range1d) == 16);

}  // namespace urLinear
