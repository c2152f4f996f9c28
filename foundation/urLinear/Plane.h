// Planes.
#pragma once

#include "foundation/urLinear/Normal.h"
#include "foundation/urLinear/Point.h"

namespace urLinear {

/// The plane through a point at right angles to a normal; z = 0 by default. A plain value.
struct NX_API Plane {
    Point point;
    Normal normal;

    Plane() = default;
    Plane(Point const& through, Normal const& perpendicular) : point(through), normal(perpendicular) {}

    /// Positive on the side that the normal points to.
    [[nodiscard]] double distance(Point const& p) const { return (p - point).dot(normal.vector()); }
    /// The point on the plane nearest to `p`.
    [[nodiscard]] Point project(Point const& p) const { return p - normal.vector() * distance(p); }
    bool operator==(Plane const&) const = default;
};

/// A plane with coordinates: its points lie at (0, 0), (1, 0) and (0, 1). A plain value. The normal is stored
/// separately and is not updated with the points.
struct NX_API ParamPlane {
    Point origin;
    Normal normal;
    Point uPoint = {1, 0, 0};
    Point vPoint = {0, 1, 0};

    ParamPlane() = default;
    ParamPlane(Point const& at00, Normal const& perpendicular, Point const& at10, Point const& at01)
        : origin(at00), normal(perpendicular), uPoint(at10), vPoint(at01) {}
    /// Computes the normal by the right-hand rule; zero when the points lie on a line.
    ParamPlane(Point const& at00, Point const& at10, Point const& at01)
        : ParamPlane(at00, Normal((at10 - at00).cross(at01 - at00)), at10, at01) {}

    [[nodiscard]] Point at(double u, double v) const { return origin + (uPoint - origin) * u + (vPoint - origin) * v; }
    bool operator==(ParamPlane const&) const = default;
};

static_assert(sizeof(Plane) == 48 && sizeof(ParamPlane) == 96);

}  // namespace urLinear
