// Checks the invariants of a cache.
#pragma once

#include <cstddef>

#include "foundation/urString/CString.h"

namespace urKRCache {

class ManagerImpl;
class Shim;

/// Checks every invariant of a manager. Use it between two calls of the manager.
class Audit {
public:
    explicit Audit(ManagerImpl const& manager) noexcept : manager_(manager) {}

    /// Describes the first fault; empty if there is none.
    [[nodiscard]] urString::CString fault() const;

private:
    // These return null if there is no fault.
    [[nodiscard]] char const* faultOf(Shim const& shim) const;
    [[nodiscard]] char const* faultOfLinks(Shim const& shim) const;
    [[nodiscard]] char const* faultOfList() const;
    [[nodiscard]] char const* faultOfSums() const;
    [[nodiscard]] std::size_t pagedOutCount() const;

    ManagerImpl const& manager_;
};

}  // namespace urKRCache
