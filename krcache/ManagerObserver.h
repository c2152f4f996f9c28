// Observes what a cache builds and drops.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/TypeInfo.h"

namespace urKRCache {

/// Why a resource left memory. All causes drop it, except `pageOut`, which wrote it to the page file.
enum class Leaving : std::uint8_t { limit, request, removal, pageFailure, buildFailure, pageOut };

/// A manager calls it for each build and for each resource that is dropped or paged out, with the class of the key.
///
/// Not owned by the manager: its owner unsets it before destroying it. It must not use the manager. Same thread as its
/// manager.
class NX_API ManagerObserver {
public:
    virtual ~ManagerObserver() = default;

    /// A key is about to build its resource. Builds nest: a key may access the resources that its own is built from.
    virtual void onBuildBegin(ur::TypeInfo keyClass) noexcept = 0;
    /// The most recent build has ended: `bytes` is 0 if it returned null or threw.
    virtual void onBuildEnd(unsigned bytes) noexcept = 0;
    virtual void onLeave(ur::TypeInfo keyClass, unsigned bytes, Leaving why) noexcept = 0;
};

}  // namespace urKRCache
