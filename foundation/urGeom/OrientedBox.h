// Boxes in any orientation.
#pragma once

#include <array>

#include "foundation/urGeom/BoundingBox.h"
#include "foundation/urLinear/Normal.h"
#include "foundation/urLinear/Point.h"

namespace urGeom {

/// A box given by its centre, the directions of its edges and half the length of each. A point by default.
///
/// A plain value; the axes should be at right angles to each other, but nothing checks this.
struct NX_API OrientedBox {
    urLinear::Point center;
    std::array<urLinear::Normal, 3> axes = {urLinear::Normal(1, 0, 0), urLinear::Normal(0, 1, 0),
                                            urLinear::Normal(0, 0, 1)};
    std::array<double, 3> halfExtents = {0, 0, 0};

    /// Corner 0 to 7: bit i of the number is set where the corner lies at the positive end of axis i.
    [[nodiscard]] urLinear::Point corner(int number) const;
    [[nodiscard]] bool contains(urLinear::Point const& point) const;
    [[nodiscard]] BoundingBox bounds() const;

    bool operator==(OrientedBox const&) const = default;
};

static_assert(sizeof(OrientedBox) == 120);

}  // namespace urGeom
