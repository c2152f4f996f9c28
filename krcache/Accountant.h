// Tracks locked, working-set and external bytes.
#pragma once

#include <cstdint>
#include <unordered_set>

#include "foundation/ur/Export.h"
#include "krcache/Shim.h"

namespace urKRCache {

/// Counts the bytes of locked resources, of the resources that an interaction uses and of other code, with their peaks.
///
/// Owned by the manager, which calls it. Prints new peaks on the cache's debug channel. It uses the size that a shim
/// has at the time of the call. Counters have 64 bits; the 32-bit results stop at the largest value. Counters are
/// signed, because an interaction may subtract bytes that it never added. Same thread as its manager.
class NX_API Accountant {
public:
    Accountant() noexcept;
    Accountant(Accountant const&);
    Accountant& operator=(Accountant const&);
    ~Accountant();

    /// Starts an interaction, or restarts the current one.
    void startInteraction() noexcept;
    /// Ends the interaction. Its peak becomes the working set unless an earlier one was larger.
    void endInteraction();

    /// Marks a resource as hot on its first access in an interaction.
    void resourceAccessed(Shim* shim) {
        if (inInteraction_ && !shim->hot_) addToWorkingSet(*shim);
    }
    void resourceCreated(Shim* shim) {
        if (shim->isResourceLocked()) addLocked(shim->size_);
    }
    void resourceLocked(Shim* shim);
    void resourceUnlocked(Shim* shim) noexcept;
    /// Called when the resource leaves memory, dropped or paged out.
    void resourceCleared(Shim* shim) noexcept {
        if (shim->isResourceLocked()) lockedSize_ -= shim->size_;
        if (shim->hot_) forgetHot(*shim);
    }

    /// Counts bytes that other code takes as locked and as hot.
    void addExternal(unsigned bytes);
    void removeExternal(unsigned bytes);

    [[nodiscard]] unsigned maxLockedSize() const noexcept;
    [[nodiscard]] unsigned maxWorkingSet() const noexcept;

private:
    friend struct CacheProbe;  // for the tests only
    friend class Audit;
    friend class ManagerImpl;
    friend class Removals;

    void addToWorkingSet(Shim& shim);
    void forgetHot(Shim& shim) noexcept;
    void removeFromWorkingSet(Shim& shim) noexcept;
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
