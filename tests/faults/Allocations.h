// Memory that runs out when a test wants it to.
#pragma once

#include <cstddef>

namespace faults {

/// Counts the allocations of the whole program and lets one of them fail: `new`, nodes of trees, and what the library
/// asks of the C library. Several can be alive one after the other, never at once. One thread.
class Allocations {
public:
    enum class Then { recover, fail };

    /// The allocation with this number, the first being 0, fails, and those after it as `then` says.
    explicit Allocations(std::size_t failing, Then then = Then::recover) noexcept;
    Allocations(Allocations const&) = delete;
    Allocations& operator=(Allocations const&) = delete;
    ~Allocations();

    /// The one that was to fail has been asked for.
    [[nodiscard]] bool failed() const noexcept;

    /// Blocks and nodes that have not been given back.
    [[nodiscard]] static std::ptrdiff_t live() noexcept;
};

}  // namespace faults
