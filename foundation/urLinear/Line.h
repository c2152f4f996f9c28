// Straight lines.
#pragma once

#include "foundation/urLinear/Normal.h"
#include "foundation/urLinear/Point.h"

namespace urLinear {

/// The line through a point in a direction; the z axis by default. A plain value.
struct NX_API Line {
    Point point;
    Normal direction;

    Line() = default;
    Line(Point const& through, Normal const& along) : point(through), direction(along) {}

    /// The point at `distance` from the line's point.
    [[nodiscard]] Point at(double distance) const { return point + direction.vector() * distance; }
    /// The point on the line nearest to `p`.
    [[nodiscard]] Point project(Point const& p) const { return at((p - point).dot(direction.vector())); }
    bool operator==(Line const&) const = default;
};

/// The line through two points, at parameter 0 and 1. A plain value.
struct NX_API ParamLine {
    Point start;
    Point end;

    ParamLine() = default;
    ParamLine(Point const& atZero, Point const& atOne) : start(atZero), end(atOne) {}

    [[nodiscard]] Point at(double parameter) const { return start + (end - start) * parameter; }
    bool operator==(ParamLine const&) const = default;
};

static_assert(sizeof(Line) == 48 && sizeof(ParamLine) == 48);

}  // namespace urLinear
