// A sum of the sizes of resources.
#pragma once

#include <algorithm>
#include <cstdint>

namespace urKRCache {

/// Sums the sizes that resources reported on entry, minus those that they reported on leaving; never below 0.
struct ResourceBytes {
    void add(unsigned size) noexcept { total += size; }
    /// `added`: the size that was added for this resource.
    void take(unsigned size, unsigned added) noexcept {
        std::uint64_t const taken = std::min<std::uint64_t>(size, total);
        total -= taken;
        resized += static_cast<std::int64_t>(taken - added);
    }

    std::uint64_t total = 0;
    std::int64_t resized = 0;  ///< how many more bytes were taken than added
};

}  // namespace urKRCache
