// Displacements in space and in the plane.
#pragma once

#include <algorithm>
#include <cmath>

#include "foundation/urLinear/Tuple.h"

namespace urLinear {

/// A displacement: direction and length, without a position. A plain value, zero by default.
template <class T, int N>
struct NX_API BasicVector : Components<BasicVector<T, N>, T, N> {
    using Base = Components<BasicVector<T, N>, T, N>;
    using Base::Base;
    constexpr BasicVector() = default;
    /// Converts from the other precision.
    template <class U>
    constexpr explicit BasicVector(BasicVector<U, N> const& other)
        : BasicVector(Base::generate([&](int i) { return static_cast<T>(other[i]); })) {}

    constexpr BasicVector& operator+=(BasicVector const& other) { return *this = *this + other; }
    constexpr BasicVector& operator-=(BasicVector const& other) { return *this = *this - other; }
    constexpr BasicVector& operator*=(T factor) { return *this = *this * factor; }
    constexpr BasicVector& operator/=(T divisor) { return *this = *this / divisor; }

    friend constexpr BasicVector operator+(BasicVector const& a, BasicVector const& b) {
        return Base::generate([&](int i) { return a[i] + b[i]; });
    }
    friend constexpr BasicVector operator-(BasicVector const& a, BasicVector const& b) {
        return Base::generate([&](int i) { return a[i] - b[i]; });
    }
    friend constexpr BasicVector operator-(BasicVector const& a) {
        return Base::generate([&](int i) { return -a[i]; });
    }
    friend constexpr BasicVector operator*(BasicVector const& a, T factor) {
        return Base::generate([&](int i) { return a[i] * factor; });
    }
    friend constexpr BasicVector operator*(T factor, BasicVector const& a) { return a * factor; }
    friend constexpr BasicVector operator/(BasicVector const& a, T divisor) {
        return Base::generate([&](int i) { return a[i] / divisor; });
    }

    [[nodiscard]] constexpr T dot(BasicVector const& other) const {
        T sum = (*this)[0] * other[0] + (*this)[1] * other[1];
        if constexpr (N == 3) sum += (*this)[2] * other[2];
        return sum;
    }
    /// In space the vector at right angles to both, by the right-hand rule; in the plane its z component.
    [[nodiscard]] constexpr auto cross(BasicVector const& other) const {
        auto const minor = [&](int i, int j) { return (*this)[i] * other[j] - (*this)[j] * other[i]; };
        if constexpr (N == 2) {
            return minor(0, 1);
        } else {
            return BasicVector(minor(1, 2), minor(2, 0), minor(0, 1));
        }
    }

    [[nodiscard]] constexpr T lengthSquared() const { return dot(*this); }
    /// Correct even where the squares of the components overflow or underflow.
    [[nodiscard]] T length() const {
        T const squared = lengthSquared();
        if (std::isnormal(squared) || std::isnan(squared)) return std::sqrt(squared);
        T const largest = largestComponent();
        return largest > 0 && std::isfinite(largest) ? largest * std::sqrt((*this / largest).lengthSquared()) : largest;
    }
    /// The same direction with length 1; the zero vector when there is none (zero or not finite).
    [[nodiscard]] BasicVector normalized() const {
        T const squared = lengthSquared();
        if (std::isnormal(squared)) return *this / std::sqrt(squared);
        T const largest = largestComponent();
        if (!(largest > 0) || !std::isfinite(largest) || std::isnan(squared)) return {};
        BasicVector const scaled = *this / largest;
        return scaled / std::sqrt(scaled.lengthSquared());
    }
    /// The greatest magnitude among the components.
    [[nodiscard]] T largestComponent() const {
        T largest = std::abs((*this)[0]);
        for (int i = 1; i < N; ++i) largest = std::max(largest, std::abs((*this)[i]));
        return largest;
    }
};

using Vector = BasicVector<double, 3>;
using Vector2 = BasicVector<double, 2>;
using VectorFlt = BasicVector<float, 3>;
using Vector2Flt = BasicVector<float, 2>;

static_assert(sizeof(Vector) == 24 && sizeof(Vector2) == 16 && sizeof(VectorFlt) == 12 && sizeof(Vector2Flt) == 8);

}  // namespace urLinear
