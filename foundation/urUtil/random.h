// Pseudo-random numbers.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"

namespace urUtil {

// One generator serves the whole process, from any thread and without a lock. It starts at a different state in every
// run unless it is seeded. Not for secrets.

/// From 0 to 1, 1 excluded.
[[nodiscard]] NX_API double random();
/// From 0 to `x`, `x` excluded; 0 when `x` is 0.
[[nodiscard]] NX_API double random(double x);
/// From `a` to `b`, `b` excluded, whichever is greater; `a` when they are equal.
[[nodiscard]] NX_API double random(double a, double b);

/// The same seed gives the same numbers, as long as only one thread draws them.
NX_API void seedRandom(std::uint64_t seed);

}  // namespace urUtil
