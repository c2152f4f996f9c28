// Compares numbers with a tolerance.
#pragma once

#include <cmath>

namespace urLinear {

/// Far above the rounding error of a chain of transforms, far below any difference that a person can make.
inline constexpr double epsilonTol = 1e-9;

/// True when they differ by at most `tolerance`. Every `equivalent` applies this to each component.
/// NaN and the infinities are equivalent to nothing.
[[nodiscard]] inline bool equivalent(double a, double b, double tolerance = epsilonTol) noexcept {
    return std::abs(a - b) <= tolerance;
}

}  // namespace urLinear
