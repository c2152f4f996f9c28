// Converts sizes to the 32 bits of size queries.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace urGeom::impl {

/// The largest value on overflow.
[[nodiscard]] constexpr std::uint32_t byteCount(std::size_t bytes) noexcept {
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min(bytes, most));
}

}  // namespace urGeom::impl
