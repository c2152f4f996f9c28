// Finds an object's number among the objects that were written.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

namespace ioImpl {

/// A hash table over a growing list of distinct objects that holds only their numbers.
///
/// It catches up with the list when it is asked, so that a file in which nothing is shared never pays for it.
class ObjectIndex {
public:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// The position of `object` in `objects`, or `none`. Requires: the same list each time, only longer.
    std::size_t find(std::vector<void const*> const& objects, void const* object);

private:
    void catchUp(std::vector<void const*> const& objects);
    void rebuild(std::vector<void const*> const& objects, std::size_t capacity);
    void insert(void const* object, std::size_t position);
    [[nodiscard]] std::size_t slotOf(void const* object) const noexcept;

    std::vector<std::size_t> slots_;  ///< position + 1; 0 is free. A power of two, at most half full.
    std::size_t known_ = 0;
};

}  // namespace ioImpl
