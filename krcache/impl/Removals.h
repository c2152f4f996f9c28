// The removals of a cache.
#pragma once

#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/FirstError.h"
#include "krcache/Shim.h"

namespace urKRCache {

class ManagerImpl;

/// Removes shims with all that is built from them, and what only they kept.
///
/// Shims that are being removed form a stack, linked through themselves, so that a chain of dependents of any length
/// needs no memory. What a hook removes is gone when the hook goes on, except where hooks would nest too deeply.
class Removals {
public:
    explicit Removals(ManagerImpl& manager) noexcept : manager_(manager) {}

    /// Throws what a hook has thrown first, once everything has been removed.
    void remove(Shim& shim);
    /// Dependents before what they are built from; what still asks for shims meanwhile gets removed ones.
    void removeAll() noexcept;

private:
    void push(Shim& shim) noexcept;
    void run(Shim const* below);
    void removeReporting(Shim& shim) noexcept;
    void removeEach(ur::vector<ur::Reference<Shim>> shims);
    void step(Shim& shim) noexcept;
    void clearForRemoval(Shim& shim);
    [[nodiscard]] unsigned sizeForRemoval(Shim const& shim) noexcept;
    void finish(Shim& shim) noexcept;
    void letGo(Shim& relative) noexcept;
    template <class Work>
    void callHooks(Shim& shim, Work&& work) noexcept;

    ManagerImpl& manager_;
    Shim* top_ = nullptr;  ///< the one to go on with, above those that wait for it; each is held
    unsigned runs_ = 0;    ///< under way, each in a hook of the one before
    urOS::FirstError failure_;
};

}  // namespace urKRCache
