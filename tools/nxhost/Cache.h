// Texts derived by scripts and kept in the resource cache.
#pragma once

#include "foundation/nxRFL/Database.h"
#include "foundation/ur/ReferenceCount.h"
#include "krcache/Manager.h"

namespace nxhost {

/// A script's handle to one derived text. The text is built when it is read and absent, and stays while there is room.
class Resource : public ur::ReferenceCount {
public:
    Resource(urKRCache::Manager& manager, ur::Reference<urKRCache::Shim> shim)
        : manager_(manager), shim_(std::move(shim)) {}

    /// Raises the error of the function that builds it. Also raises if the key was removed or the text does not fit.
    [[nodiscard]] urString::CString text() const;
    [[nodiscard]] bool inMemory() const noexcept { return shim_->isResourceAllocated(); }
    /// From now on the text is paged out to a file when memory is short, and read back from there.
    void keepOnDisk() { manager_.setSerializable(shim_); }
    void lock() { manager_.lockResource(shim_); }
    void unlock() { manager_.unlockResource(shim_); }
    /// Removes it together with everything derived from it.
    void remove() { manager_.removeResource(shim_); }

    [[nodiscard]] ur::Reference<urKRCache::Shim> const& shim() const noexcept { return shim_; }

private:
    urKRCache::Manager& manager_;
    ur::Reference<urKRCache::Shim> shim_;
};

/// Registers the classes of the cache and of resources: `cache:resource(name, function)` for a text that `function()`
/// returns, `cache:derived(name, source, function)` for a text that `function(text of the source)` returns. Scripts
/// cannot set the memory limit above `mostMemory` bytes; 0 allows any.
void exposeCache(nxRFL::Database& database, std::uint64_t mostMemory);

}  // namespace nxhost
