// Points in space and in the plane.
#pragma once

#include "foundation/urLinear/Vector.h"

namespace urLinear {

/// A position. A plain value, the origin by default; two points differ by a vector.
template <class T, int N>
struct NX_API BasicPoint : Components<BasicPoint<T, N>, T, N> {
    using Base = Components<BasicPoint<T, N>, T, N>;
    using Base::Base;
    constexpr BasicPoint() = default;
    /// Converts from the other precision.
    template <class U>
    constexpr explicit BasicPoint(BasicPoint<U, N> const& other)
        : BasicPoint(Base::generate([&](int i) { return static_cast<T>(other[i]); })) {}

    constexpr BasicPoint& operator+=(BasicVector<T, N> const& step) { return *this = *this + step; }
    constexpr BasicPoint& operator-=(BasicVector<T, N> const& step) { return *this = *this - step; }

    friend constexpr BasicPoint operator+(BasicPoint const& from, BasicVector<T, N> const& step) {
        return Base::generate([&](int i) { return from[i] + step[i]; });
    }
    friend constexpr BasicPoint operator-(BasicPoint const& from, BasicVector<T, N> const& step) {
        return Base::generate([&](int i) { return from[i] - step[i]; });
    }
    friend constexpr BasicVector<T, N> operator-(BasicPoint const& to, BasicPoint const& from) {
        return BasicVector<T, N>::generate([&](int i) { return to[i] - from[i]; });
    }

    [[nodiscard]] T distance(BasicPoint const& other) const { return (other - *this).length(); }
};

using Point = BasicPoint<double, 3>;
using Point2 = BasicPoint<double, 2>;
using PointFlt = BasicPoint<float, 3>;
using Point2Flt = BasicPoint<float, 2>;

static_assert(sizeof(Point) == 24 && sizeof(Point2) == 16 && sizeof(PointFlt) == 12 && sizeof(Point2Flt) == 8);

}  // namespace urLinear
