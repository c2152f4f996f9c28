// Texts that scripts derive, kept by the resource cache.
#pragma once

#include "foundation/nxRFL/Database.h"
#include "foundation/ur/ReferenceCount.h"
#include "krcache/Manager.h"

namespace nxhost {

/// A script's handle to one derived text. It is built when it is asked for and absent, and kept while there is room.
class Resource : public ur::ReferenceCount {
public:
    Resource(urKRCache::Manager& manager, ur::Reference<urKRCache::Shim> shim)
        : manager_(manager), shim_(std::move(shim)) {}

    /// Raises what the function that builds it raised, and when the key has been removed or the text has no room.
    [[nodiscard]] urString::CString text() const;
    [[nodiscard]] bool inMemory() const noexcept { return shim_->isResourceAllocated(); }
    /// From now on the text goes to a file when there is no room, and comes back from there.
    void keepOnDisk() { manager_.setSerializable(shim_); }
    void lock() { manager_.lockResource(shim_); }
    void unlock() { manager_.unlockResource(shim_); }
    /// Together with all that is derived from it.
    void remove() { manager_.removeResource(shim_); }

    [[nodiscard]] ur::Reference<urKRCache::Shim> const& shim() const noexcept { return shim_; }

private:
    urKRCache::Manager& manager_;
    ur::Reference<urKRCache::Shim> shim_;
};

/// Registers the classes of the cache and of resources: `cache:resource(name, function)` for what `function()` builds,
/// `cache:derived(name, source, function)` for what `function(text of the source)` builds from it. Scripts can set the
/// memory limit to no more than `mostMemory`, in bytes; 0 lets them set any.
void exposeCache(nxRFL::Database& database, std::uint64_t mostMemory);

}  // namespace nxhost
