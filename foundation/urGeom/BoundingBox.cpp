// Extends and tests bounding boxes.
#include "foundation/urGeom/BoundingBox.h"

#include <algorithm>
#include <cmath>

namespace urGeom {
namespace {

float roundedDown(double value) {
    auto const near = static_cast<float>(value);
    return near > value ? std::nextafter(near, -std::numeric_limits<float>::infinity()) : near;
}
float roundedUp(double value) { return -roundedDown(-value); }

bool isNumber(urLinear::Point const& point) {
    return !std::isnan(point.x) && !std::isnan(point.y) && !std::isnan(point.z);
}

}  // namespace

BoundingBox::BoundingBox(urLinear::Range3d const& range) {
    if (range.empty()) return;
    include(range.min);
    include(range.max);
}

bool BoundingBox::empty() const noexcept { return !(min_.x <= max_.x && min_.y <= max_.y && min_.z <= max_.z); }

urLinear::Range3d BoundingBox::range() const {
    return empty() ? urLinear::Range3d() : urLinear::Range3d(urLinear::Point(min_), urLinear::Point(max_));
}

void BoundingBox::include(urLinear::Point const& point) {
    if (!isNumber(point)) return;
    for (int i = 0; i < 3; ++i) {
        min_[i] = std::min(min_[i], roundedDown(point[i]));
        max_[i] = std::max(max_[i], roundedUp(point[i]));
    }
}

void BoundingBox::include(BoundingBox const& other) {
    for (int i = 0; i < 3; ++i) {
        min_[i] = std::min(min_[i], other.min_[i]);
        max_[i] = std::max(max_[i], other.max_[i]);
    }
}

bool BoundingBox::contains(urLinear::Point const& point) const {
    bool inside = true;
    for (int i = 0; i < 3; ++i) {
        inside = inside && double(min_[i]) <= point[i] && point[i] <= double(max_[i]);
    }
    return inside;
}

bool BoundingBox::intersects(BoundingBox const& other) const {
    bool common = !empty() && !other.empty();
    for (int i = 0; i < 3; ++i) common = common && min_[i] <= other.max_[i] && other.min_[i] <= max_[i];
    return common;
}

}  // namespace urGeom
