// A fast 64-bit checksum of what is in the page file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace urKRCache::impl {

/// Tells whether a block came back as it was written. Never leaves the process, so its form may change.
[[nodiscard]] inline std::uint64_t checksum(char const* bytes, std::size_t count) noexcept {
    // Multiplying to 128 bits and folding mixes sixteen bytes at a time; many chains keep the multiplier busy.
    constexpr std::size_t lanes = 8;
    constexpr std::size_t stride = 16 * lanes;
    constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;
    auto const word = [](char const* place) {
        std::uint64_t value;
        std::memcpy(&value, place, sizeof value);
        return value;
    };
    auto const fold = [](std::uint64_t a, std::uint64_t b) {
        __extension__ using Wide = unsigned __int128;
        Wide const product = static_cast<Wide>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    };
    std::uint64_t sums[lanes];
    for (std::size_t i = 0; i < lanes; ++i) sums[i] = odd * (2 * i + 1) ^ count;
    char const* const end = bytes + count;
    for (; end - bytes >= static_cast<std::ptrdiff_t>(stride); bytes += stride) {
        for (std::size_t i = 0; i < lanes; ++i) {
            sums[i] = fold(word(bytes + 16 * i) ^ odd, word(bytes + 16 * i + 8) ^ sums[i]);
        }
    }
    std::uint64_t sum = odd;
    for (std::uint64_t const lane : sums) sum = fold(sum ^ lane, odd);
    for (; bytes != end; ++bytes) sum = fold(sum ^ static_cast<unsigned char>(*bytes), odd);
    return sum;
}

}  // namespace urKRCache::impl
