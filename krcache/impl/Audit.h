// Checking a cache.
#pragma once

#include <cstddef>

#include "foundation/urString/CString.h"

namespace urKRCache {

class ManagerImpl;
class Shim;

/// Checks every invariant of a manager between two of its calls.
class Audit {
public:
    explicit Audit(ManagerImpl const& manager) noexcept : manager_(manager) {}

    /// The first fault found; empty when there is none.
    [[nodiscard]] urString::CString fault() const;

private:
    // Null when there is none.
    [[nodiscard]] char const* faultOf(Shim const& shim) const;
    [[nodiscard]] char const* faultOfLinks(Shim const& shim) const;
    [[nodiscard]] char const* faultOfList() const;
    [[nodiscard]] char const* faultOfSums() const;
    [[nodiscard]] std::size_t pagedOutCount() const;

    ManagerImpl const& manager_;
};

}  // namespace urKRCache
