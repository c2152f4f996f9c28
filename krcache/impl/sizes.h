// Converts byte counts for results and messages.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace urKRCache::impl {

/// The distance that a peak must keep from the limit.
inline constexpr std::int64_t limitMargin = 1048576;

/// The count, or the largest 32-bit value if it is larger.
[[nodiscard]] constexpr unsigned saturated(std::uint64_t bytes) noexcept {
    return static_cast<unsigned>(std::min<std::uint64_t>(bytes, std::numeric_limits<unsigned>::max()));
}

/// For messages: in single precision, from which their two decimals are rounded.
[[nodiscard]] constexpr double megabytes(std::uint64_t bytes) noexcept {
    return static_cast<double>(static_cast<float>(bytes) * 0x1p-20F);
}

}  // namespace urKRCache::impl
