// The resource cache.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urOS/OStream.h"
#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "krcache/KeyData.h"
#include "krcache/Resource.h"
#include "krcache/Shim.h"
#include "krcache/Statistics.h"

namespace urKRCache {

class ManagerImpl;
class ManagerObserver;
class TraceRecorder;
struct Tuning;

/// Keeps resources within a memory limit, rebuilds them on demand, and removes dependents together with their sources.
///
/// The host owns it, registers it with `setCacheManagerFunc` and destroys it; the destructor removes all shims,
/// dependents first. Resources leave memory in the order of their last use, unless they are locked. A resource is
/// dropped, or written to the page file if its shim is serializable. Counts have 64 bits; 32-bit results stop at the
/// largest value. No call reports an error; unusual events are printed on `debugChannel()`. One thread. Hooks of keys
/// and resources may use the manager while it works, but must not destroy it. A removed shim never has a resource
/// again.
///
/// Removals and evictions caused by hooks take effect at once, up to 16 levels deep. Beyond that, removals wait until
/// the hook returns, and hooks of evictions build nothing. Look-ups do not find a shim once its removal has begun.
class NX_API Manager {
public:
    /// The page file is created in `folder` and deleted with the manager.
    explicit Manager(urString::IString const& folder);
    /// The same with other sizes; only tests need this.
    Manager(urString::IString const& folder, Tuning const& tuning);
    Manager(Manager const&) = delete;
    Manager& operator=(Manager const&) = delete;
    ~Manager();

    /// Returns the shim of an equal key, whatever its type, or a new one.
    ur::Reference<Shim> getShim(ur::Reference<KeyData> key, Shim::KeyType type);
    /// Null if no key is equal.
    [[nodiscard]] ur::Reference<Shim> findShim(ur::Reference<KeyData> key) const;

    /// Builds or reads back the resource if it is absent, and makes it the most recently used. Null when the key builds
    /// nothing, when the resource did not fit and was dropped again, when the shim was removed, while the resource is
    /// being built, and when hooks of an eviction would build without end. A resource that was paged out again at once
    /// is returned without its payload; check `isResourceAllocated`.
    ur::Reference<Resource> accessResource(ur::Reference<Shim> shim);
    /// Keeps the resource, if any, in memory until each lock has been undone.
    void lockResource(ur::Reference<Shim> shim);
    /// Undoes one lock; does nothing without a lock. Evicts nothing.
    void unlockResource(ur::Reference<Shim> shim);
    /// Drops or pages out the resource unless it is locked.
    void clearResource(ur::Reference<Shim> shim);
    /// Drops the resource, even a locked one, and removes the key and everything built from it.
    void removeResource(ur::Reference<Shim> shim);
    /// Called by a shim when no references are left that count: none at all, or only those of dependents.
    void onLastUnref(Shim* shim);
    /// Drops or pages out every resource that is not locked.
    void clear();
    /// From now on the resource is paged out instead of dropped.
    void setSerializable(ur::Reference<Shim> shim);

    /// Resources accessed between the two calls count towards the working set.
    void startInteraction();
    void endInteraction();

    /// In bytes; 0 for no limit.
    void setMemoryLimit(unsigned bytes);
    void setMemoryLimit64(std::uint64_t bytes);
    [[nodiscard]] unsigned getMemoryLimit() const;
    [[nodiscard]] std::uint64_t getMemoryLimit64() const;
    /// The bytes of all resources in memory: sizes on entry minus sizes on leaving. If a resource changes its size in
    /// between, the count stays wrong by the difference.
    [[nodiscard]] unsigned getMemoryUsed() const;
    [[nodiscard]] std::uint64_t getMemoryUsed64() const;
    /// Evicts until within the limit. `incoming`: bytes that are about to be used, 0 if unknown.
    void enforceMemoryLimit(unsigned incoming);
    /// From now on the limit bounds the resident size of the process plus the bytes that are not residential.
    void setUseResidentSize();
    /// The resident size of the process, in bytes.
    [[nodiscard]] unsigned getResidentSize() const;
    [[nodiscard]] std::uint64_t getResidentSize64() const;
    /// Other code takes memory, or returns it: the limit falls or rises by `bytes`, but never below 1 byte.
    void allocatingExternalResource(unsigned bytes);
    void deletedExternalResource(unsigned bytes);

    /// The number of keys that have a shim here.
    [[nodiscard]] int numKeys() const;
    /// Prints the bytes in memory, by class of key, on the debug channel.
    void logUsageByType() const;
    /// Counts so far. Takes time proportional to the number of keys; costs nothing until it is called.
    [[nodiscard]] Statistics statistics() const;
    /// Describes the first invariant that does not hold; empty if all hold.
    [[nodiscard]] urString::CString audit() const;
    /// Prints one line for each shim, with the shims it is built from.
    void printDependencies(urOS::OStream& out) const;
    /// The same as a DOT graph; arrows lead from a resource to its dependents.
    void printDependenciesAsDot(urOS::OStream& out) const;
    /// Records events in `recorder` from now on. The caller owns it; null stops recording.
    void setTraceRecorder(TraceRecorder* recorder);
    /// Reports builds and drops to `observer` from now on. The caller owns it; null stops that.
    void setObserver(ManagerObserver* observer);

    /// A flag for the host; the cache does not read it.
    void setClearCheck(bool clearCheck);

private:
    friend struct CacheProbe;  // for the tests only

    std::unique_ptr<ManagerImpl> impl_;
};

/// Sets the function that returns the process's manager. Null unsets it.
NX_API void setCacheManagerFunc(Manager* (*function)());
/// The manager that the function returns. Throws `std::logic_error` if there is no function or no manager.
[[nodiscard]] NX_API Manager& getKeyResourceManager();

}  // namespace urKRCache
