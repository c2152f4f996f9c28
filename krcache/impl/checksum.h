// A fast 64-bit checksum of what is in the page file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace urKRCache::impl {

/// Tells whether a block came back as it was written. Never leaves the process, so its form may change.
[[nodiscard]] inline std::uint64_t checksum(char const* bytes, std::size_t count) noexcept {
    // Multiplying two words to 128 bits and folding mixes sixteen bytes at a time; two chains keep the multiplier busy.
    auto const word = [&](std::size_t place) {
        std::uint64_t value;
        std::memcpy(&value, bytes + place, sizeof value);
        return value;
    };
    auto const fold = [](std::uint64_t a, std::uint64_t b) {
        __extension__ using Wide = unsigned __int128;
        Wide const product = static_cast<Wide>(a) * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    };
    constexpr std::uint64_t odd[] = {0x9E3779B97F4A7C15U, 0xC2B2AE3D27D4EB4FU, 0x165667B19E3779F9U,
                                     0xD6E8FEB86659FD93U};
    std::uint64_t a = odd[0] ^ count;
    std::uint64_t b = odd[1];
    std::uint64_t c = odd[2];
    std::uint64_t d = odd[3];
    std::size_t place = 0;
    for (; place + 64 <= count; place += 64) {
        a = fold(word(place) ^ odd[0], word(place + 8) ^ a);
        b = fold(word(place + 16) ^ odd[1], word(place + 24) ^ b);
        c = fold(word(place + 32) ^ odd[2], word(place + 40) ^ c);
        d = fold(word(place + 48) ^ odd[3], word(place + 56) ^ d);
    }
    a = fold(a ^ c, b ^ d ^ odd[0]);
    for (; place < count; ++place) a = fold(a ^ static_cast<unsigned char>(bytes[place]), odd[1]);
    return a;
}

}  // namespace urKRCache::impl
