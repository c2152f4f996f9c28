// Sizes in the 32 bits that size queries have.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace urGeom::impl {

/// The largest value when it is more.
[[nodiscard]] constexpr std::uint32_t byteCount(std::size_t bytes) noexcept {
    constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max();
    return static_cast<std::uint32_t>(std::min(bytes, most));
}

}  // namespace urGeom::impl
