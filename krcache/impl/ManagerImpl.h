// The state of a manager and the steps of its work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <unordered_map>

#include "krcache/Accountant.h"
#include "krcache/Manager.h"
#include "krcache/ManagerObserver.h"
#include "krcache/TraceRecorder.h"
#include "krcache/impl/KeyTable.h"
#include "krcache/impl/LruList.h"
#include "krcache/impl/PageFile.h"
#include "krcache/impl/ResourceBytes.h"
#include "krcache/impl/Tuning.h"
#include "krcache/impl/scopes.h"

namespace urKRCache {

class FileStream;

/// What a manager does, in the words of its interface.
///
/// Each step leaves the cache whole before it calls a hook, and after a hook takes nothing for granted: the shim may
/// have been cleared, paged, locked or removed meanwhile. Always so: a shim is in the list exactly when its resource
/// is in memory and not locked; the counters are the sums of the sizes of the shims whose resource is in memory, but
/// for what resources have grown or shrunk.
class ManagerImpl {
public:
    ManagerImpl(Manager& manager, urString::IString const& folder, Tuning const& tuning);
    ManagerImpl(ManagerImpl const&) = delete;
    ManagerImpl& operator=(ManagerImpl const&) = delete;
    ~ManagerImpl() = default;

    // Finding and building (access.cpp)
    /// The shim that was made for this very key; null when there is none.
    [[nodiscard]] Shim* known(KeyData const& key) const noexcept {
        return key.memo_.owner == this ? key.memo_.shim : nullptr;
    }
    [[nodiscard]] Shim* find(KeyData const& key) const {
        Shim* const shim = known(key);
        return shim ? shim : table_.find(key);
    }
    ur::Reference<Shim> findOrCreateShim(ur::Reference<KeyData> const& key, Shim::KeyType type);
    ur::Reference<Resource> access(Shim& shim) {
        if (!shim.isResourceAllocated()) [[unlikely]]
            return accessAbsent(shim);
        if (shim.lockCount_ <= 0) lru_.touch(shim);
        ++statistics_.hits;
        if (isWatched_) [[unlikely]]
            noteHit(shim);
        return shim.resource_;
    }

    // Room and limits (limits.cpp)
    void enforceMemoryLimit(std::uint64_t incoming) {
        if (limit_ == 0) return;
        if (useResidentSize_) sampleResidentSize(incoming);
        if (isOverLimit()) evict();
    }
    void clear();
    void clear(Shim& shim) { clearOrPageOut(shim, Cause::request); }
    void lock(Shim& shim);
    void unlock(Shim& shim);
    void startInteraction() noexcept;
    void endInteraction();
    void setMemoryLimit(std::uint64_t bytes);
    void setUseResidentSize();
    [[nodiscard]] std::uint64_t residentSize() const { return tuning_.residentSize(); }
    void allocatingExternal(unsigned bytes);
    void deletedExternal(unsigned bytes);
    [[nodiscard]] std::uint64_t limit() const noexcept { return limit_; }
    [[nodiscard]] std::uint64_t used() const noexcept { return used_.total + reserved_; }

    // Removal (removal.cpp)
    void remove(Shim& shim);
    /// Dependents before what they are built from; what still asks for shims meanwhile gets removed ones.
    void removeAll() noexcept;

    void setSerializable(Shim& shim) noexcept { shim.serializable_ = true; }
    void setClearCheck(bool clearCheck) noexcept { clearCheck_ = clearCheck; }
    void setTraceRecorder(TraceRecorder* recorder) noexcept;
    void setObserver(ManagerObserver* observer) noexcept { observer_ = observer; }

    // Telling (usage.cpp, dependencies.cpp, audit.cpp)
    [[nodiscard]] std::size_t keyCount() const noexcept { return table_.size(); }
    void logUsageByType() const;
    [[nodiscard]] Statistics statistics() const;
    [[nodiscard]] urString::CString audit() const;
    void printDependencies(urOS::OStream& out) const;
    void printDependenciesAsDot(urOS::OStream& out) const;

private:
    friend struct CacheProbe;  // for the tests alone

    using Cause = Leaving;
    static constexpr std::int64_t noBound = std::numeric_limits<std::int64_t>::max();

    // access.cpp
    class ObservedBuild;
    ur::Reference<Resource> accessAbsent(Shim& shim);
    void noteHit(Shim& shim);
    void watch() noexcept { isWatched_ = accountant_.inInteraction_ || trace_; }
    bool createResource(Shim& shim);
    ur::Reference<Resource> buildObserved(KeyData const& key, ClassUsage& usage);
    ur::Reference<Resource> buildTimed(KeyData const& key, ClassUsage& usage) const;
    ur::Reference<Shim> createShim(ur::Reference<KeyData> const& key, Shim::KeyType type);
    void linkSources(Shim& shim, KeyData const& key);
    void withdraw(Shim& shim) noexcept;
    ClassUsage& usageOf(KeyData const& key);
    [[nodiscard]] bool isAttached(Shim const& shim) const noexcept {
        return shim.manager_ && shim.removal_ == Shim::Removal::none;
    }
    /// Not in hooks of evictions that would not end otherwise.
    [[nodiscard]] bool mayBuild() const noexcept {
        return evictions_ == 0 || (evictions_ < tuning_.nestedHooks && clearsWithBuilds_ > 0);
    }

    // limits.cpp
    void account(Shim& shim, KeyData const& key, unsigned size, TraceRecorder::Event event);
    void link(Shim& shim) noexcept {
        if (shim.lockCount_ <= 0) lru_.append(shim);
    }
    void unlink(Shim& shim) noexcept {
        if (shim.lockCount_ <= 0) lru_.remove(shim);
    }
    void addToUsed(Shim const& shim) noexcept;
    /// The resource, which has that size now, leaves memory, and the shim the list.
    void takeFromUsed(Shim& shim, unsigned size) noexcept {
        used_.take(size, shim.size_);
        if (shim.residential_) residentialUsed_.take(size, shim.size_);
        accountant_.resourceCleared(&shim);
        unlink(shim);
    }
    void makeSpace(std::uint64_t bytes, bool residential);
    void sampleResidentSize(std::uint64_t incoming);
    void measureOtherResident();
    [[nodiscard]] std::int64_t bounded() const noexcept { return static_cast<std::int64_t>(used()) + otherResident_; }
    [[nodiscard]] bool isOverLimit() const noexcept { return bounded() > bound_; }
    void evict();
    void clearOrPageOut(Shim& shim, Cause cause);
    void leaveMemory(Shim& shim, Cause cause);
    void clearAllocated(Shim& shim, unsigned size, Cause cause);
    ur::Reference<Resource> takeResource(Shim& shim, Cause cause);
    void dropResource(Shim& shim, Cause cause);
    void reportExcess() const;
    void checkPeak(std::int64_t peak, char const* message) const;
    void applyMemoryLimit(std::uint64_t bytes);

    // paging.cpp
    void pageOut(Shim& shim, unsigned size);
    bool pageIn(Shim& shim);
    bool endPaging(Shim& shim, PageFileEntry& chunk, FileStream const& stream,
                   std::exception_ptr const& thrownByResource);
    void cleanUpPaging(Shim& shim);
    void reportLoss(Shim const& shim, urUtil::Error const& why) noexcept;

    // removal.cpp
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
    template <class Work>
    void shielded(Work&& work) noexcept;

    // dependencies.cpp and audit.cpp; a fault is null when there is none
    [[nodiscard]] ur::vector<Shim const*> inOrder() const;
    [[nodiscard]] char const* faultOf(Shim const& shim) const;
    [[nodiscard]] char const* faultOfLinks(Shim const& shim) const;
    [[nodiscard]] char const* faultOfList() const;
    [[nodiscard]] char const* faultOfSums() const;
    [[nodiscard]] std::size_t pagedOutCount() const;

    void record(TraceRecorder::Event event, Shim const& shim) noexcept {
        if (trace_) [[unlikely]]
            recordTraced(event, shim);
    }
    void recordTraced(TraceRecorder::Event event, Shim const& shim) noexcept;

    void noteLeaving(Shim const& shim, Cause cause) {
        if (observer_) [[unlikely]]
            observer_->onLeave(shim.usage_->keyClass, shim.size_, cause);
    }

    Manager& manager_;
    Tuning const tuning_;
    LruList lru_;
    KeyTable table_;
    PageFile pageFile_;
    Accountant accountant_;
    ResourceBytes used_;
    ResourceBytes residentialUsed_;  ///< the part of what is used that shows in the resident size
    std::uint64_t limit_ = 0;
    std::int64_t bound_ = noBound;  ///< the limit, when there is one
    std::uint64_t reserved_ = 0;    ///< what room is being made for
    std::uint64_t residentialReserved_ = 0;
    /// The resident size less what is ours of it, at the last sample. Negative where resources claim more than they
    /// have touched.
    std::int64_t otherResident_ = 0;
    std::uint64_t limitDebt_ = 0;  ///< external bytes that the limit was too small to give up
    std::uint64_t bytesSinceSample_ = 0;
    bool isWatched_ = false;  ///< someone wants to know of hits
    bool useResidentSize_ = false;
    bool clearCheck_ = false;
    bool dying_ = false;
    bool pageFileTold_ = false;         ///< that there is no page file
    unsigned evictions_ = 0;            ///< under way, each in a hook of the one before
    std::size_t clearsWithBuilds_ = 0;  ///< how many more clears of theirs leave hooks free to build
    TraceRecorder* trace_ = nullptr;
    ManagerObserver* observer_ = nullptr;
    Statistics statistics_;                                                 ///< without what is computed on demand
    std::uint64_t cleared_[static_cast<std::size_t>(Cause::pageOut)] = {};  ///< by cause; paging out clears nothing
    std::unordered_map<ur::TypeInfo, ClassUsage> usages_;
    ClassUsage* lastUsage_ = nullptr;
    std::uint32_t nextSerial_ = 0;
    Shim* removals_ = nullptr;  ///< the one to go on with, on top of those that wait for it; each is held
    unsigned removalRuns_ = 0;  ///< under way, each in a hook of the one before
    std::exception_ptr removalFailure_;
};

}  // namespace urKRCache
