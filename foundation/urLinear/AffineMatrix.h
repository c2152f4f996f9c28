// Affine transforms of space and of the plane.
#pragma once

#include <cmath>
#include <optional>

#include "foundation/urLinear/Line.h"
#include "foundation/urLinear/Point.h"
#include "foundation/urLinear/Quaternion.h"

namespace urLinear {

/// An affine transform of N = 3 or 2 dimensions for row vectors: `point * matrix`, and `a * b` is a first, then b.
///
/// Stored as N + 1 groups of N coefficients: group k is the image of axis k, the last one the image of
/// the origin. A plain value, the identity by default. `translate`, `scale`, `rotate` and `*=` add a
/// transform after the ones already in the matrix, `preMult` adds one before them.
template <int N>
class NX_API BasicAffineMatrix {
public:
    using PointType = BasicPoint<double, N>;
    using VectorType = BasicVector<double, N>;
    static constexpr int size = N * (N + 1);

    constexpr BasicAffineMatrix() : BasicAffineMatrix(1.0) {}
    /// The scaling of every axis by `factor`.
    constexpr explicit BasicAffineMatrix(double factor) {
        for (int k = 0; k < N; ++k) coefficients_[k * N + k] = factor;
    }
    explicit BasicAffineMatrix(Quaternion const& rotation) requires(N == 3) {
        for (int k = 0; k < N; ++k) setAxis(k, rotation.rotate(BasicAffineMatrix().axis(k)));
    }

    /// Coefficient 0 to size - 1 in storage order.
    [[nodiscard]] constexpr double coefficient(int i) const { return coefficients_[i]; }
    [[nodiscard]] constexpr double& coefficient(int i) { return coefficients_[i]; }
    [[nodiscard]] constexpr double const* data() const { return coefficients_; }
    [[nodiscard]] constexpr double* data() { return coefficients_; }

    /// The image of axis k.
    [[nodiscard]] constexpr VectorType axis(int k) const { return group<VectorType>(k); }
    constexpr BasicAffineMatrix& setAxis(int k, VectorType const& image) { return setGroup(k, image); }
    /// The image of the origin.
    [[nodiscard]] constexpr PointType translation() const { return group<PointType>(N); }
    constexpr BasicAffineMatrix& setTranslation(PointType const& image) { return setGroup(N, image); }

    /// Resets this to the identity.
    constexpr BasicAffineMatrix& identity() { return *this = BasicAffineMatrix(); }
    constexpr BasicAffineMatrix& translate(VectorType const& step) { return setTranslation(translation() + step); }
    constexpr BasicAffineMatrix& scale(VectorType const& factors) {
        for (int i = 0; i < size; ++i) coefficients_[i] *= factors[i % N];
        return *this;
    }
    constexpr BasicAffineMatrix& scale(double factor) {
        return scale(VectorType::generate([&](int) { return factor; }));
    }
    constexpr BasicAffineMatrix& scale(double x, double y, double z) requires(N == 3) {
        return scale(VectorType(x, y, z));
    }
    /// Rotates by `angle` radians about the origin, from x towards y.
    BasicAffineMatrix& rotate(double angle) requires(N == 2) {
        double const c = std::cos(angle);
        double const s = std::sin(angle);
        return *this *= BasicAffineMatrix().setAxis(0, {c, s}).setAxis(1, {-s, c});
    }
    /// Rotates by `angle` radians about `axis`, by the right-hand rule.
    BasicAffineMatrix& rotate(Line const& axis, double angle) requires(N == 3) {
        BasicAffineMatrix rotation(Quaternion(axis.direction, angle));
        return *this *= rotation.setTranslation(axis.point - (axis.point - PointType()) * rotation);
    }
    BasicAffineMatrix& rotate(Quaternion const& rotation) requires(N == 3) {
        return *this *= BasicAffineMatrix(rotation);
    }

    /// Applies `after` after this.
    constexpr BasicAffineMatrix& operator*=(BasicAffineMatrix const& after) { return *this = *this * after; }
    /// Applies `before` before this.
    constexpr BasicAffineMatrix& preMult(BasicAffineMatrix const& before) { return *this = before * *this; }

    /// The factor of the volume (of the area); negative for a reflection.
    [[nodiscard]] constexpr double determinant() const {
        if constexpr (N == 2) {
            return axis(0).cross(axis(1));
        } else {
            return axis(0).dot(axis(1).cross(axis(2)));
        }
    }
    /// Empty when the axes' images lie in a plane (on a line) up to rounding, or when the result is not finite.
    [[nodiscard]] std::optional<BasicAffineMatrix> invert() const;
    /// The identity when there is no inverse.
    [[nodiscard]] BasicAffineMatrix inverse() const { return invert().value_or(BasicAffineMatrix()); }

    bool operator==(BasicAffineMatrix const&) const = default;

    friend constexpr VectorType operator*(VectorType const& vector, BasicAffineMatrix const& matrix) {
        VectorType result = vector[0] * matrix.axis(0) + vector[1] * matrix.axis(1);
        if constexpr (N == 3) result += vector[2] * matrix.axis(2);
        return result;
    }
    friend constexpr PointType operator*(PointType const& point, BasicAffineMatrix const& matrix) {
        return matrix.translation() + (point - PointType()) * matrix;
    }
    friend constexpr BasicAffineMatrix operator*(BasicAffineMatrix const& first, BasicAffineMatrix const& second) {
        BasicAffineMatrix result;
        for (int k = 0; k < N; ++k) result.setAxis(k, first.axis(k) * second);
        result.setTranslation(first.translation() * second);
        return result;
    }

private:
    template <class Value>
    [[nodiscard]] constexpr Value group(int k) const {
        return Value::generate([&](int i) { return coefficients_[k * N + i]; });
    }
    template <class Value>
    constexpr BasicAffineMatrix& setGroup(int k, Value const& value) {
        for (int i = 0; i < N; ++i) coefficients_[k * N + i] = value[i];
        return *this;
    }

    double coefficients_[static_cast<unsigned>(size)]{};
};

using AffineMatrix = BasicAffineMatrix<3>;
using AffineMatrix2 = BasicAffineMatrix<2>;

/// The normal of the transformed surface, by the inverse transpose; zero where the surface collapses.
[[nodiscard]] NX_API Normal operator*(Normal const& normal, AffineMatrix const& matrix);

template <int N>
[[nodiscard]] bool equivalent(BasicAffineMatrix<N> const& a, BasicAffineMatrix<N> const& b,
                              double tolerance = epsilonTol) {
    bool result = true;
    for (int i = 0; i < a.size; ++i) result = result && equivalent(a.coefficient(i), b.coefficient(i), tolerance);
    return result;
}

static_assert(sizeof(AffineMatrix) == 96 && sizeof(AffineMatrix2) == 48);

}  // namespace urLinear
