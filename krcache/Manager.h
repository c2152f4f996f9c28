// The cache itself.
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

/// Keeps resources under a limit of bytes, rebuilds them on demand, and removes what is built from what is removed.
///
/// The host owns it, makes it known with `setCacheManagerFunc` and destroys it, with all shims, dependents first.
/// Resources leave in the order of their last use, unless they are locked: dropped, or written to the page file if
/// their shim is serializable. Counts are 64 bits wide inside; 32-bit results stop at the largest value. Nothing
/// fails towards callers; what is unusual is said on `debugChannel()`. One thread. Hooks of keys and resources may
/// use the manager while it works, but not destroy it. A removed shim has no resource, and nothing changes that.
///
/// Removals and evictions that hooks cause take effect at once, 16 deep: deeper, removals wait for the hook to return,
/// and hooks of evictions build nothing. No look-up finds a shim once its removal has begun.
class NX_API Manager {
public:
    /// `folder` is for the page file, which goes when the manager goes.
    explicit Manager(urString::IString const& folder);
    /// With sizes of its own, which only tests need.
    Manager(urString::IString const& folder, Tuning const& tuning);
    Manager(Manager const&) = delete;
    Manager& operator=(Manager const&) = delete;
    ~Manager();

    /// The shim of an equal key, of whatever type, or a new one.
    ur::Reference<Shim> getShim(ur::Reference<KeyData> key, Shim::KeyType type);
    /// Null when no key is equal.
    [[nodiscard]] ur::Reference<Shim> findShim(ur::Reference<KeyData> key) const;

    /// Builds or reads back the resource if it is absent, and makes it the most recently used. Null when the key
    /// builds nothing, when the resource did not fit and was dropped again, when the shim has been removed, while the
    /// resource is being built, and when hooks of an eviction build without end. One that was paged out again at once
    /// is there, without its payload: `isResourceAllocated` tells.
    ur::Reference<Resource> accessResource(ur::Reference<Shim> shim);
    /// Keeps the resource, when there is one, in memory until each lock has been undone.
    void lockResource(ur::Reference<Shim> shim);
    /// Nothing without a lock. Evicts nothing.
    void unlockResource(ur::Reference<Shim> shim);
    /// Drops or pages out the resource unless it is locked.
    void clearResource(ur::Reference<Shim> shim);
    /// Drops the resource, even a locked one, and removes the key and all that is built from it.
    void removeResource(ur::Reference<Shim> shim);
    /// For shims, when their last reference that counts has gone.
    void onLastUnref(Shim* shim);
    /// Drops or pages out every resource that is not locked.
    void clear();
    /// From now on the resource is paged out instead of dropped.
    void setSerializable(ur::Reference<Shim> shim);

    /// Between the two, accessed resources count towards the working set.
    void startInteraction();
    void endInteraction();

    /// In bytes; 0 for none.
    void setMemoryLimit(unsigned bytes);
    void setMemoryLimit64(std::uint64_t bytes);
    [[nodiscard]] unsigned getMemoryLimit() const;
    [[nodiscard]] std::uint64_t getMemoryLimit64() const;
    /// The bytes of all resources in memory: their sizes when they came, less those when they left. A resource that
    /// changed its size in between leaves the difference behind.
    [[nodiscard]] unsigned getMemoryUsed() const;
    [[nodiscard]] std::uint64_t getMemoryUsed64() const;
    /// Evicts until within the limit. `incoming`: bytes that are about to be used, 0 if unknown.
    void enforceMemoryLimit(unsigned incoming);
    /// From now on the limit bounds the resident size of the process, what is not residential added.
    void setUseResidentSize();
    /// Of the process, in bytes.
    [[nodiscard]] unsigned getResidentSize() const;
    [[nodiscard]] std::uint64_t getResidentSize64() const;
    /// Other code takes memory or gives it back: the limit falls and rises with it, but never below one byte.
    void allocatingExternalResource(unsigned bytes);
    void deletedExternalResource(unsigned bytes);

    /// The keys that have a shim here.
    [[nodiscard]] int numKeys() const;
    /// Prints the bytes in memory by class of key on the debug channel.
    void logUsageByType() const;
    /// Takes time in proportion to the keys, and nothing until it is asked for.
    [[nodiscard]] Statistics statistics() const;
    /// The first invariant that does not hold, in words; empty when all do.
    [[nodiscard]] urString::CString audit() const;
    /// One line for each shim, telling what it is built from.
    void printDependencies(urOS::OStream& out) const;
    /// The same as a graph for the DOT tools: arrows lead from a resource to what is built from it.
    void printDependenciesAsDot(urOS::OStream& out) const;
    /// Records events from now on in `recorder`, which is not owned; null ends that.
    void setTraceRecorder(TraceRecorder* recorder);
    /// Tells `observer`, which is not owned, of builds and drops from now on; null ends that.
    void setObserver(ManagerObserver* observer);

    /// A mark for the host; nothing here reads it.
    void setClearCheck(bool clearCheck);

private:
    friend struct CacheProbe;  // for the tests alone

    std::unique_ptr<ManagerImpl> impl_;
};

/// Tells how the process finds its manager. Null takes that back.
NX_API void setCacheManagerFunc(Manager* (*function)());
/// The manager that the function yields. Throws `std::logic_error` when there is no function or no manager.
[[nodiscard]] NX_API Manager& getKeyResourceManager();

}  // namespace urKRCache
