// The named components of points and vectors, and a plain pair.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urLinear/Tolerance.h"

namespace urLinear {

/// Base of a value type `Self` with the N = 2 or 3 components x, y(, z) of type T, zero by default.
///
/// The components in this order are the whole storage. `Self` separates points from vectors: neither converts to nor
/// compares with the other.
template <class Self, class T, int N>
struct Components;

template <class Self, class T>
struct NX_API Components<Self, T, 2> {
    T x = 0;
    T y = 0;

    constexpr Components() = default;
    constexpr Components(T xValue, T yValue) : x(xValue), y(yValue) {}

    constexpr T& operator[](int i) { return i == 0 ? x : y; }
    constexpr T operator[](int i) const { return i == 0 ? x : y; }
    bool operator==(Components const&) const = default;

    /// The value whose component i is `component(i)`.
    template <class Function>
    [[nodiscard]] static constexpr Self generate(Function component) {
        return Self(component(0), component(1));
    }
};

template <class Self, class T>
struct NX_API Components<Self, T, 3> {
    T x = 0;
    T y = 0;
    T z = 0;

    constexpr Components() = default;
    constexpr Components(T xValue, T yValue, T zValue) : x(xValue), y(yValue), z(zValue) {}

    constexpr T& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
    constexpr T operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }
    bool operator==(Components const&) const = default;

    /// The value whose component i is `component(i)`.
    template <class Function>
    [[nodiscard]] static constexpr Self generate(Function component) {
        return Self(component(0), component(1), component(2));
    }
};

template <class Self, class T, int N>
[[nodiscard]] bool equivalent(Components<Self, T, N> const& a, Components<Self, T, N> const& b,
                              double tolerance = epsilonTol) {
    bool result = true;
    for (int i = 0; i < N; ++i) result = result && equivalent(a[i], b[i], tolerance);
    return result;
}

/// Two numbers that are neither a position nor a direction, such as texture coordinates.
struct NX_API Tuple2 : Components<Tuple2, double, 2> {
    using Components::Components;
};

static_assert(sizeof(Tuple2) == 16);

}  // namespace urLinear
