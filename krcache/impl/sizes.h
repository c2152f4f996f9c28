// Byte counts as callers and readers get them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace urKRCache::impl {

/// Room that the checks of the limit leave between a peak and the limit.
inline constexpr std::int64_t limitMargin = 1048576;

/// The count, or the largest that 32 bits hold.
[[nodiscard]] constexpr unsigned saturated(std::uint64_t bytes) noexcept {
    return static_cast<unsigned>(std::min<std::uint64_t>(bytes, std::numeric_limits<unsigned>::max()));
}

/// As messages show it: in single precision, which is what their two decimals are rounded from.
[[nodiscard]] constexpr double megabytes(std::uint64_t bytes) noexcept {
    return static_cast<double>(static_cast<float>(bytes) * 0x1p-20F);
}

}  // namespace urKRCache::impl
