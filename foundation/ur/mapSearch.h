// Binary search for the nodes of ordered maps.
#pragma once

#include <cstdint>

namespace ur::impl {

/// The number of indices below `count` for which `before` is true: those come first. The last `few` are tested one by
/// one.
template <std::uint32_t few, class Before>
[[nodiscard]] std::uint32_t countBefore(std::uint32_t count, Before before) {
    std::uint32_t first = 0;
    while (count > few) {
        std::uint32_t const half = count / 2;
        bool const isBefore = before(first + half);
        first = isBefore ? first + half + 1 : first;
        count = isBefore ? count - half - 1 : half;
    }
    for (; count > 0 && before(first); --count) ++first;
    return first;
}

}  // namespace ur::impl
