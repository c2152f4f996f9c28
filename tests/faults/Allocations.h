// Lets memory run out on purpose in tests.
#pragma once

#include <cstddef>

namespace faults {

/// Counts the allocations of the whole program and makes one fail: those by `new`, nodes of trees, and the library's
/// calls of the C library. Only one object at a time. One thread.
class Allocations {
public:
    enum class Then { recover, fail };

    /// The allocation number `failing`, counted from 0, fails, and those after it as `then` says.
    explicit Allocations(std::size_t failing, Then then = Then::recover) noexcept;
    Allocations(Allocations const&) = delete;
    Allocations& operator=(Allocations const&) = delete;
    ~Allocations();

    /// Whether the allocation that was to fail has been requested.
    [[nodiscard]] bool failed() const noexcept;

    /// The number of blocks and nodes that are allocated and not released.
    [[nodiscard]] static std::ptrdiff_t live() noexcept;
};

}  // namespace faults
