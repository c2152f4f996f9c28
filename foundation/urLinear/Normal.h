// Directions as vectors of length 1.
#pragma once

#include <cmath>
#include <limits>

#include "foundation/urLinear/Vector.h"

namespace urLinear {

/// The caller's guarantee about the components.
enum class NormalPromise {
    none = 0,        ///< any vector; the constructor normalizes it
    unitLength = 1,  ///< a vector of length 1, stored unchanged
};

/// A direction. Its length is 1, or 0 when it was made from a vector without direction (zero or not finite).
///
/// A plain value whose components are the whole storage. By default it points along the last axis.
/// Components of length 1 up to rounding are stored unchanged, so that a normalized value stays the same to the last
/// bit however often it is written, read and set again.
template <class T, int N>
class NX_API BasicNormal {
public:
    constexpr BasicNormal() { vector_[N - 1] = 1; }
    BasicNormal(T x, T y, NormalPromise promise = NormalPromise::none) requires(N == 2) { set(x, y, promise); }
    BasicNormal(T x, T y, T z, NormalPromise promise = NormalPromise::none) requires(N == 3) { set(x, y, z, promise); }
    explicit BasicNormal(BasicVector<T, N> const& direction, NormalPromise promise = NormalPromise::none) {
        set(direction, promise);
    }

    void set(T x, T y, NormalPromise promise = NormalPromise::none) requires(N == 2) {
        set(BasicVector<T, N>(x, y), promise);
    }
    void set(T x, T y, T z, NormalPromise promise = NormalPromise::none) requires(N == 3) {
        set(BasicVector<T, N>(x, y, z), promise);
    }
    void set(BasicVector<T, N> const& direction, NormalPromise promise = NormalPromise::none) {
        // Twice the error that rounding of sum, root and division can leave in the square of a length.
        constexpr T rounding = 10 * std::numeric_limits<T>::epsilon();
        bool const isUnit = promise == NormalPromise::unitLength || std::abs(direction.lengthSquared() - 1) <= rounding;
        vector_ = isUnit ? direction : direction.normalized();
    }

    [[nodiscard]] constexpr T x() const { return vector_.x; }
    [[nodiscard]] constexpr T y() const { return vector_.y; }
    [[nodiscard]] constexpr T z() const requires(N == 3) { return vector_.z; }
    constexpr T operator[](int i) const { return vector_[i]; }
    [[nodiscard]] constexpr BasicVector<T, N> const& vector() const { return vector_; }

    BasicNormal operator-() const { return BasicNormal(-vector_, NormalPromise::unitLength); }
    bool operator==(BasicNormal const&) const = default;

private:
    BasicVector<T, N> vector_;
};

template <class T, int N>
[[nodiscard]] bool equivalent(BasicNormal<T, N> const& a, BasicNormal<T, N> const& b, double tolerance = epsilonTol) {
    return equivalent(a.vector(), b.vector(), tolerance);
}

using Normal = BasicNormal<double, 3>;
using Normal2 = BasicNormal<double, 2>;
using NormalFlt = BasicNormal<float, 3>;

static_assert(sizeof(Normal) == 24 && sizeof(Normal2) == 16 && sizeof(NormalFlt) == 12);

}  // namespace urLinear
