// Creates, applies and interpolates rotations as quaternions.
#include "foundation/urLinear/Quaternion.h"

#include <algorithm>
#include <cmath>

namespace urLinear {

namespace {

Quaternion combine(Quaternion const& a, double fromA, Quaternion const& b, double fromB) {
    return {fromA * a.x + fromB * b.x, fromA * a.y + fromB * b.y, fromA * a.z + fromB * b.z, fromA * a.w + fromB * b.w};
}

}  // namespace

Quaternion::Quaternion(Normal const& axis, double angle) {
    Vector const turned = axis.vector() * std::sin(angle / 2);
    *this = {turned.x, turned.y, turned.z, std::cos(angle / 2)};
}

Quaternion Quaternion::normalized() const {
    double const largest = std::max(imaginary().largestComponent(), std::abs(w));
    if (!(largest > 0) || !std::isfinite(largest)) return {};
    Quaternion const scaled(x / largest, y / largest, z / largest, w / largest);
    double const factor = 1 / std::sqrt(scaled.dot(scaled));
    return std::isfinite(factor) ? combine(scaled, factor, {}, 0) : Quaternion();
}

Vector Quaternion::rotate(Vector const& vector) const {
    Quaternion const unit = normalized();
    Vector const twice = 2 * unit.imaginary().cross(vector);
    return vector + unit.w * twice + unit.imaginary().cross(twice);
}

Quaternion slerp(Quaternion const& a, Quaternion const& b, double t) {
    Quaternion const from = a.normalized();
    Quaternion const to = b.normalized();
    double const cosine = from.dot(to);
    double const sign = cosine < 0 ? -1 : 1;
    double const angle = std::acos(std::min(std::abs(cosine), 1.0));
    double const sine = std::sin(angle);
    // At such a small angle the arc is straight, and the sine too small for a divisor.
    if (sine < epsilonTol) return combine(from, 1 - t, to, sign * t).normalized();
    return combine(from, std::sin((1 - t) * angle) / sine, to, sign * std::sin(t * angle) / sine).normalized();
}

}  // namespace urLinear
