// Rotations as quaternions.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urLinear/Normal.h"

namespace urLinear {

/// The quaternion x i + y j + z k + w, stored in the order x, y, z, w (the real part last); the identity rotation by
/// default.
///
/// A plain value of any length. As a rotation, it acts as the unit quaternion in its direction; the zero quaternion
/// does not rotate. Products follow the matrices: `a * b` rotates by a first, then b.
struct NX_API Quaternion {
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 1;

    constexpr Quaternion() = default;
    constexpr Quaternion(double xValue, double yValue, double zValue, double wValue)
        : x(xValue), y(yValue), z(zValue), w(wValue) {}
    /// The rotation about `axis` by `angle` radians, by the right-hand rule; the identity for the zero normal.
    Quaternion(Normal const& axis, double angle);

    /// Component 0 to 3 in storage order.
    constexpr double& operator[](int i) { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    constexpr double operator[](int i) const { return i == 0 ? x : i == 1 ? y : i == 2 ? z : w; }
    bool operator==(Quaternion const&) const = default;

    [[nodiscard]] constexpr Vector imaginary() const { return {x, y, z}; }
    [[nodiscard]] constexpr double dot(Quaternion const& other) const {
        return x * other.x + y * other.y + z * other.z + w * other.w;
    }
    /// The inverse rotation.
    [[nodiscard]] constexpr Quaternion conjugate() const { return {-x, -y, -z, w}; }
    /// Of length 1; the identity when there is no direction (zero or not finite).
    [[nodiscard]] Quaternion normalized() const;
    [[nodiscard]] Vector rotate(Vector const& vector) const;

    /// Rotates by `a`, then by `b`: the Hamilton product b a.
    friend constexpr Quaternion operator*(Quaternion const& a, Quaternion const& b) {
        Vector const v = b.w * a.imaginary() + a.w * b.imaginary() + b.imaginary().cross(a.imaginary());
        return {v.x, v.y, v.z, b.w * a.w - b.imaginary().dot(a.imaginary())};
    }
};

/// Compares the components, so `q` and `-q` are not equivalent although they rotate alike.
[[nodiscard]] inline bool equivalent(Quaternion const& a, Quaternion const& b, double tolerance = epsilonTol) {
    return equivalent(a.imaginary(), b.imaginary(), tolerance) && equivalent(a.w, b.w, tolerance);
}

/// The rotation at the fraction `t` (0 to 1) of the shorter way from `a` to `b`, at constant angular speed.
[[nodiscard]] NX_API Quaternion slerp(Quaternion const& a, Quaternion const& b, double t);

static_assert(sizeof(Quaternion) == 32);

}  // namespace urLinear
