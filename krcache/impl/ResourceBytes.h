// A sum of the sizes of resources.
#pragma once

#include <algorithm>
#include <cstdint>

namespace urKRCache {

/// What each resource told when it came into memory, less what each told when it left, but never below zero.
struct ResourceBytes {
    void add(unsigned size) noexcept { total += size; }
    /// `added`: what has been added for this resource.
    void take(unsigned size, unsigned added) noexcept {
        std::uint64_t const taken = std::min<std::uint64_t>(size, total);
        total -= taken;
        resized += static_cast<std::int64_t>(taken - added);
    }

    std::uint64_t total = 0;
    std::int64_t resized = 0;  ///< by how much more was taken than had been added
};

}  // namespace urKRCache
