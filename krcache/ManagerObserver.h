// A view of what a cache builds and drops, as it happens.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/TypeInfo.h"

namespace urKRCache {

/// Why a resource is gone: dropped, but for `pageOut`, which has written it to the page file.
enum class Leaving : std::uint8_t { limit, request, removal, pageFailure, buildFailure, pageOut };

/// Called by a manager for each build and each resource that is dropped or paged out, with the class of its key.
///
/// Not owned by the manager: its owner unsets it before it goes. It must not use the manager. The manager's
/// thread.
class NX_API ManagerObserver {
public:
    virtual ~ManagerObserver() = default;

    /// A key is about to build its resource. Builds nest: a key may access what it is built from.
    virtual void onBuildBegin(ur::TypeInfo keyClass) noexcept = 0;
    /// The build begun last has ended: `bytes` is 0 when it gave nothing or threw.
    virtual void onBuildEnd(unsigned bytes) noexcept = 0;
    virtual void onLeave(ur::TypeInfo keyClass, unsigned bytes, Leaving why) noexcept = 0;
};

}  // namespace urKRCache
