// Finds a written object's number.
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

namespace ioImpl {

/// A hash table over a growing list of distinct objects. It holds only their numbers.
///
/// It adds new objects only when it is queried, so that a file without shared objects costs nothing.
class ObjectIndex {
public:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    /// The position of `object` in `objects`, or `none`. Requires: each call passes the same list, which only grows.
    std::size_t find(std::vector<void const*> const& objects, void const* object);

private:
    void catchUp(std::vector<void const*> const& objects);
    void rebuild(std::vector<void const*> const& objects, std::size_t capacity);
    void insert(void const* object, std::size_t position);
    [[nodiscard]] std::size_t slotOf(void const* object) const noexcept;

    std::vector<std::size_t> slots_;  ///< position + 1; 0 is free. The size is a power of two; at most half is used.
    std::size_t known_ = 0;
};

}  // namespace ioImpl
