// Corners of oriented boxes, and point tests.
#include "foundation/urGeom/OrientedBox.h"

#include <cmath>

namespace urGeom {

urLinear::Point OrientedBox::corner(int number) const {
    urLinear::Point result = center;
    for (unsigned i = 0; i < 3; ++i) {
        bool const positive = (static_cast<unsigned>(number) >> i & 1U) != 0;
        result += axes[i].vector() * (positive ? halfExtents[i] : -halfExtents[i]);
    }
    return result;
}

bool OrientedBox::contains(urLinear::Point const& point) const {
    bool inside = true;
    for (unsigned i = 0; i < 3; ++i) {
        inside = inside && std::abs((point - center).dot(axes[i].vector())) <= halfExtents[i];
    }
    return inside;
}

BoundingBox OrientedBox::bounds() const {
    BoundingBox box;
    for (int number = 0; number < 8; ++number) box.include(corner(number));
    return box;
}

}  // namespace urGeom
