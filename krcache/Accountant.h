// Tracks locked, working-set and external bytes.
#pragma once

#include <cstdint>
#include <unordered_set>

#include "foundation/ur/Export.h"
#include "krcache/Shim.h"

namespace urKRCache {

/// Counts the bytes that are locked, that an interaction touches and that other code takes, and keeps their peaks.
///
/// Owned by the manager, which calls it. Prints new peaks on the cache's debug channel. Sizes are those that the shims
/// have at the time of a call. Counters are wide inside; the 32-bit results stop at the largest value. They are
/// signed, because bytes may go that an interaction did not see coming. The same thread as its manager.
class NX_API Accountant {
public:
    Accountant() noexcept;
    Accountant(Accountant const&);
    Accountant& operator=(Accountant const&);
    ~Accountant();

    /// Opens an interaction; one that is open already begins anew.
    void startInteraction() noexcept;
    /// The peak of the interaction becomes the working set when there was no larger one.
    void endInteraction();

    /// The first access in an interaction makes a resource hot.
    void resourceAccessed(Shim* shim) {
        if (inInteraction_ && !shim->hot_) makeHot(*shim);
    }
    void resourceCreated(Shim* shim) {
        if (shim->isResourceLocked()) addLocked(shim->size_);
    }
    void resourceLocked(Shim* shim);
    void resourceUnlocked(Shim* shim) noexcept;
    /// The resource leaves memory: dropped or paged out.
    void resourceCleared(Shim* shim) noexcept {
        if (shim->isResourceLocked()) lockedSize_ -= shim->size_;
        if (shim->hot_) forgetHot(*shim);
    }

    /// Bytes that other code takes count as locked and as hot.
    void addExternal(unsigned bytes);
    void removeExternal(unsigned bytes);

    [[nodiscard]] unsigned maxLockedSize() const noexcept;
    [[nodiscard]] unsigned maxWorkingSet() const noexcept;

private:
    friend struct CacheProbe;  // for the tests alone
    friend class Audit;
    friend class ManagerImpl;
    friend class Removals;

    void makeHot(Shim& shim);
    void forgetHot(Shim& shim) noexcept;
    void cool(Shim& shim) noexcept;
    void addHot(std::int64_t bytes) noexcept;
    void addLocked(std::int64_t bytes);

    std::unordered_set<Shim*> hotSet_;
    std::int64_t externalSize_ = 0;
    std::int64_t lockedSize_ = 0;
    std::int64_t maxLockedSize_ = 0;
    std::int64_t hotSize_ = 0;
    std::int64_t maxHotSize_ = 0;
    std::int64_t maxWorkingSet_ = 0;
    bool inInteraction_ = false;
};

}  // namespace urKRCache
