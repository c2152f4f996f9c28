// The framework's hash of byte strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ur {

/// 32-bit FNV-1a of the bytes. The same text gives the same hash in every run and on every machine.
/// Source: Fowler, Noll and Vo, offset basis 2166136261, prime 16777619.
[[nodiscard]] constexpr unsigned hashfunction(std::string_view bytes) noexcept {
    std::uint32_t hash = 2166136261U;
    for (char byte : bytes) hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    return hash;
}

}  // namespace ur
