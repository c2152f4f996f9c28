// Extends, intersects and transforms boxes.
#include "foundation/urLinear/Range3d.h"

#include <algorithm>
#include <cmath>

namespace urLinear {

bool Range3d::intersects(Range3d const& other) const {
    bool result = !empty() && !other.empty();
    for (int i = 0; i < 3; ++i) result = result && min[i] <= other.max[i] && other.min[i] <= max[i];
    return result;
}

void Range3d::include(Range3d const& other) {
    if (other.empty()) return;
    if (empty()) {
        *this = other;
        return;
    }
    for (int i = 0; i < 3; ++i) {
        min[i] = std::min(min[i], other.min[i]);
        max[i] = std::max(max[i], other.max[i]);
    }
}

Range3d Range3d::transformed(AffineMatrix const& matrix) const {
    if (empty()) return *this;
    // Each coefficient moves the extreme corners by one of its two products (Arvo, Graphics Gems I).
    Range3d result(matrix.translation());
    for (int k = 0; k < 3; ++k) {
        Vector const low = matrix.axis(k) * min[k];
        Vector const high = matrix.axis(k) * max[k];
        for (int i = 0; i < 3; ++i) {
            result.min[i] += std::min(low[i], high[i]);
            result.max[i] += std::max(low[i], high[i]);
        }
    }
    return result;
}

}  // namespace urLinear
