// Axis-aligned boxes.
#pragma once

#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Point.h"

namespace urLinear {

/// The box from corner `min` to corner `max`, both included; empty unless `min` is at most `max` in every component.
/// Empty by default. A plain value that stores the corners as given.
struct NX_API Range3d {
    Point min = {1, 1, 1};
    Point max = {0, 0, 0};

    constexpr Range3d() = default;
    /// The range of one point.
    constexpr explicit Range3d(Point const& point) : min(point), max(point) {}
    constexpr Range3d(Point const& minimum, Point const& maximum) : min(minimum), max(maximum) {}

    [[nodiscard]] constexpr bool empty() const { return !(min.x <= max.x && min.y <= max.y && min.z <= max.z); }
    [[nodiscard]] bool contains(Point const& point) const { return intersects(Range3d(point)); }
    /// True when they have a point in common.
    [[nodiscard]] bool intersects(Range3d const& other) const;
    /// Zero when empty.
    [[nodiscard]] constexpr Vector size() const { return empty() ? Vector() : max - min; }
    [[nodiscard]] constexpr Point center() const { return min + (max - min) * 0.5; }

    /// Extends just enough to contain `point`. Ignores a point with a NaN.
    void include(Point const& point) { include(Range3d(point)); }
    void include(Range3d const& other);
    /// The smallest range that contains this one transformed; empty stays empty.
    [[nodiscard]] Range3d transformed(AffineMatrix const& matrix) const;

    bool operator==(Range3d const&) const = default;
};

/// Compares the stored corners, also of empty ranges.
[[nodiscard]] inline bool equivalent(Range3d const& a, Range3d const& b, double tolerance = epsilonTol) {
    return equivalent(a.min, b.min, tolerance) && equivalent(a.max, b.max, tolerance);
}

static_assert(sizeof(Range3d) == 48);

}  // namespace urLinear
