// The manager's state: keys, eviction order and counters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "krcache/Accountant.h"
#include "krcache/Manager.h"
#include "krcache/ManagerObserver.h"
#include "krcache/TraceRecorder.h"
#include "krcache/impl/Budget.h"
#include "krcache/impl/KeyTable.h"
#include "krcache/impl/LruList.h"
#include "krcache/impl/Pager.h"
#include "krcache/impl/Removals.h"
#include "krcache/impl/Tuning.h"
#include "krcache/impl/scopes.h"

namespace urKRCache {

/// Finds and builds resources, evicts them in the order of their last use, and locks them.
///
/// `Budget` counts bytes, `Pager` moves payloads, `Removals` removes keys, `Reports` and `Audit` only read. Each step
/// makes the cache consistent before it calls a hook. After a hook it assumes nothing: the shim may have been cleared,
/// paged, locked or removed. Invariants: a shim is in the list if and only if its resource is in memory and not locked;
/// each counter is the sum of the sizes of the shims whose resource is in memory, apart from what resources have grown
/// or shrunk.
class ManagerImpl {
public:
    ManagerImpl(Manager& manager, urString::IString const& folder, Tuning const& tuning);
    ManagerImpl(ManagerImpl const&) = delete;
    ManagerImpl& operator=(ManagerImpl const&) = delete;
    ~ManagerImpl() = default;

    /// The shim created for this key object; null if there is none.
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

    void enforceMemoryLimit(std::uint64_t incoming) {
        if (budget_.limit() == 0) return;
        if (budget_.usesResidentSize()) budget_.sampleResidentSize(incoming);
        if (budget_.isOverLimit()) evict();
    }
    void clear();
    void clear(Shim& shim) { clearOrPageOut(shim, Cause::request); }
    void lock(Shim& shim);
    void unlock(Shim& shim);
    void startInteraction() noexcept;
    void endInteraction();
    void setMemoryLimit(std::uint64_t bytes);
    void setUseResidentSize() { budget_.useResidentSize(); }
    [[nodiscard]] std::uint64_t residentSize() const { return tuning_.residentSize(); }
    void allocatingExternal(unsigned bytes);
    void deletedExternal(unsigned bytes);
    [[nodiscard]] Budget const& budget() const noexcept { return budget_; }

    void remove(Shim& shim) { removals_.remove(shim); }
    void removeAll() noexcept { removals_.removeAll(); }

    void setSerializable(Shim& shim) noexcept { shim.serializable_ = true; }
    void setClearCheck(bool clearCheck) noexcept { clearCheck_ = clearCheck; }
    void setTraceRecorder(TraceRecorder* recorder) noexcept;
    void setObserver(ManagerObserver* observer) noexcept { observer_ = observer; }

    [[nodiscard]] std::size_t keyCount() const noexcept { return table_.size(); }

private:
    friend class Audit;
    friend struct CacheProbe;  // for the tests only
    friend class Pager;
    friend class Removals;
    friend class Reports;

    using Cause = Leaving;

    class ObservedBuild;
    ur::Reference<Resource> accessAbsent(Shim& shim);
    void noteHit(Shim& shim);
    void watch() noexcept { isWatched_ = accountant_.inInteraction_ || trace_; }
    bool createResource(Shim& shim);
    ur::Reference<Resource> buildObserved(KeyData const& key, ClassUsage& usage);
    ur::Reference<Resource> buildTimed(KeyData const& key, ClassUsage& usage) const;
    ur::Reference<Shim> createShim(ur::Reference<KeyData> const& key, Shim::KeyType type);
    void linkSources(Shim& shim, KeyData const& key);
    void removeAfterException(Shim& shim) noexcept;
    ClassUsage& usageOf(KeyData const& key);
    [[nodiscard]] bool isAttached(Shim const& shim) const noexcept {
        return shim.manager_ && shim.removal_ == Shim::Removal::none;
    }
    /// False in hooks of evictions that would otherwise not end.
    [[nodiscard]] bool mayBuild() const noexcept {
        return evictions_ == 0 || (evictions_ < tuning_.nestedHooks && clearsWithBuilds_ > 0);
    }

    void account(Shim& shim, KeyData const& key, unsigned size, TraceRecorder::Event event);
    void link(Shim& shim) noexcept {
        if (shim.lockCount_ <= 0) lru_.append(shim);
    }
    void unlink(Shim& shim) noexcept {
        if (shim.lockCount_ <= 0) lru_.remove(shim);
    }
    /// Subtracts a resource that leaves memory and removes its shim from the list. `size`: its size now.
    void takeFromUsed(Shim& shim, unsigned size) noexcept {
        budget_.take(size, shim.size_, shim.residential_);
        accountant_.resourceCleared(&shim);
        unlink(shim);
    }
    void makeSpace(std::uint64_t bytes, bool residential);
    void evict();
    void clearOrPageOut(Shim& shim, Cause cause);
    void leaveMemory(Shim& shim, Cause cause);
    void clearAllocated(Shim& shim, unsigned size, Cause cause);
    ur::Reference<Resource> takeResource(Shim& shim, Cause cause);
    void dropResource(Shim& shim, Cause cause);
    void reportExcess() const;
    void checkPeak(std::int64_t peak, char const* message) const;
    void limitChanged();

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
    Pager pager_;
    Budget budget_;
    Removals removals_;
    Accountant accountant_;
    bool isWatched_ = false;  ///< something records or counts hits
    bool clearCheck_ = false;
    bool shuttingDown_ = false;
    unsigned evictions_ = 0;            ///< nested evictions under way
    std::size_t clearsWithBuilds_ = 0;  ///< how many more clears the evictions may do before hooks build nothing
    TraceRecorder* trace_ = nullptr;
    ManagerObserver* observer_ = nullptr;
    Statistics statistics_;                                                 ///< without the counts that are computed on
                                                                            ///< demand
    std::uint64_t cleared_[static_cast<std::size_t>(Cause::pageOut)] = {};  ///< by cause; paging out clears nothing
    std::unordered_map<ur::TypeInfo, ClassUsage> usages_;
    ClassUsage* lastUsage_ = nullptr;
    std::uint32_t nextSerial_ = 0;
};

}  // namespace urKRCache
