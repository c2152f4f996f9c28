// Removes keys with everything built from them.
#pragma once

#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/FirstError.h"
#include "krcache/Shim.h"

namespace urKRCache {

class ManagerImpl;

/// Removes shims with everything built from them, and with sources that only they kept.
///
/// Shims that are being removed form a stack linked through the shims, so that a chain of dependents of any length
/// needs no memory. What a hook removes is gone before the hook continues, unless hooks nest too deeply.
class Removals {
public:
    explicit Removals(ManagerImpl& manager) noexcept : manager_(manager) {}

    /// Throws a hook's first exception after everything has been removed.
    void remove(Shim& shim);
    /// Removes dependents before their sources. Shims requested meanwhile are returned removed.
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
    void releaseRelative(Shim& relative) noexcept;
    template <class Work>
    void callHooks(Shim& shim, Work&& work) noexcept;

    ManagerImpl& manager_;
    Shim* top_ = nullptr;  ///< top of the stack; a reference to each shim in it is held
    unsigned depth_ = 0;   ///< nested runs under way
    urOS::FirstError failure_;
};

}  // namespace urKRCache
