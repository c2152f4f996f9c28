// Finds, builds, evicts and locks resources.
#include "krcache/impl/ManagerImpl.h"

#include <algorithm>
#include <new>
#include <typeinfo>
#include <utility>

#include "foundation/urOS/StopWatch.h"
#include "foundation/urOS/reportException.h"
#include "krcache/debugChannel.h"
#include "krcache/impl/Reports.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

/// Collects the shims of a key's sub-keys.
class Visitor final : public KeyVisitor {
public:
    explicit Visitor(ur::vector<ur::Reference<Shim>>* shims) noexcept : shims_(shims) {}

    void visit(Shim* shim) override {
        if (shim) shims_->emplace_back(shim);
    }

private:
    ur::vector<ur::Reference<Shim>>* shims_;
};

constexpr unsigned sizeWorthAWarning = 524288;
constexpr std::int32_t sizeTolerance = 1024;

void warnUnless(std::uint32_t size, std::uint32_t expected) {
    auto const difference = static_cast<std::int32_t>(size - expected);
    if (difference > -sizeTolerance && difference < sizeTolerance) return;
    debugChannel().print("Unanticipated %.02fMB resource!\n", impl::megabytes(size));
}

}  // namespace

ManagerImpl::ManagerImpl(Manager& manager, urString::IString const& folder, Tuning const& tuning)
    : manager_(manager),
      tuning_(tuning),
      table_(tuning.tableSlots),
      pager_(*this, folder, tuning_),
      budget_(tuning_),
      removals_(*this) {}

ur::Reference<Shim> ManagerImpl::findOrCreateShim(ur::Reference<KeyData> const& key, Shim::KeyType type) {
    Shim* const shim = table_.find(*key);
    return shim ? ur::Reference<Shim>(shim) : createShim(key, type);
}

ur::Reference<Shim> ManagerImpl::createShim(ur::Reference<KeyData> const& key, Shim::KeyType type) {
    std::uint64_t const before = table_.version();
    ur::Reference<Shim> shim(new Shim(manager_, key, type));
    shim->manager_ = nullptr;  // set once it is in the table, because removal takes it from there
    shim->hash_ = key->hash();
    // Computing the key's hash and sizes may have inserted an equal key.
    Shim* const rival = table_.version() == before ? nullptr : table_.find(*key);
    if (rival) return ur::Reference<Shim>(rival);
    if (shuttingDown_) {
        shim->key_.reset();
        return shim;
    }
    shim->serial_ = nextSerial_++;
    shim->usage_ = &usageOf(*key);
    table_.insert(*shim);
    shim->manager_ = &manager_;
    key->memo_.shim = shim.get();
    key->memo_.owner = this;
    try {
        linkSources(*shim, *key);
    } catch (...) {
        removeAfterException(*shim);
        throw;
    }
    return shim;
}

void ManagerImpl::linkSources(Shim& shim, KeyData const& key) {
    ur::vector<ur::Reference<Shim>> sources;
    Visitor visitor(&sources);
    key.visitSubKeys(visitor);
    if (!isAttached(shim)) return;
    for (ur::Reference<Shim> const& source : sources) {
        // A source's removal removes its dependents, so remove this shim as well.
        if (!isAttached(*source)) return removals_.remove(shim);
    }
    for (ur::Reference<Shim> const& source : sources) shim.addChild(*source);
}

/// Removes a shim because of an exception. An exception from the removal is only reported. The key may already have
/// used the shim.
void ManagerImpl::removeAfterException(Shim& shim) noexcept {
    try {
        removals_.remove(shim);
    } catch (...) {
        urOS::reportException("urKRCache::Manager::getShim", std::current_exception());
    }
}

ClassUsage& ManagerImpl::usageOf(KeyData const& key) {
    ur::TypeInfo const keyClass(typeid(key));
    if (!lastUsage_ || lastUsage_->keyClass != keyClass) {
        lastUsage_ = &usages_[keyClass];
        lastUsage_->keyClass = keyClass;
    }
    return *lastUsage_;
}

void ManagerImpl::noteHit(Shim& shim) {
    accountant_.resourceAccessed(&shim);
    record(TraceRecorder::Event::hit, shim);
}

// If memory runs out, the event is left out of the trace. Nothing else depends on the trace.
void ManagerImpl::recordTraced(TraceRecorder::Event event, Shim const& shim) noexcept {
    try {
        trace_->record(event, shim.serial_, shim.size_);
    } catch (std::bad_alloc const&) {
    }
}

void ManagerImpl::setTraceRecorder(TraceRecorder* recorder) noexcept {
    trace_ = recorder;
    watch();
}

ur::Reference<Resource> ManagerImpl::accessAbsent(Shim& shim) {
    bool const isBusy = shim.building_ || shim.paging_;
    if (!isAttached(shim) || isBusy || !mayBuild()) return {};
    Scoped const building(shim.building_, true);
    bool const isReadBack = shim.pageEntry_ && pager_.pageIn(shim);
    if (!isReadBack && !createResource(shim)) return {};
    if (shim.manager_) accountant_.resourceAccessed(&shim);
    return shim.resource_;
}

/// Reading the clock takes as long as a small build, so only a sample of many builds is timed.
ur::Reference<Resource> ManagerImpl::buildTimed(KeyData const& key, ClassUsage& usage) const {
    std::uint64_t const build = usage.builds++;
    bool const isEarly = build < tuning_.timedBuilds;
    bool const isSample = (build & (tuning_.buildsPerSample - 1)) == 0;
    if (!isEarly && !isSample) return key.createResource();
    urOS::StopWatch watch;
    watch.start();
    ur::Reference<Resource> built = key.createResource();
    usage.buildSeconds += watch.elapsed() * static_cast<double>(isEarly ? 1 : tuning_.buildsPerSample);
    return built;
}

/// Reports the start of a build to the observer and, on destruction, its end.
class ManagerImpl::ObservedBuild {
public:
    /// Requires: an observer is set.
    ObservedBuild(ManagerImpl& manager, ur::TypeInfo keyClass) noexcept
        : manager_(manager), observer_(manager.observer_) {
        observer_->onBuildBegin(keyClass);
    }
    ObservedBuild(ObservedBuild const&) = delete;
    ObservedBuild& operator=(ObservedBuild const&) = delete;
    ~ObservedBuild() {
        if (observer_ == manager_.observer_) observer_->onBuildEnd(bytes_);
    }

    void setSize(unsigned bytes) noexcept { bytes_ = bytes; }

private:
    ManagerImpl& manager_;
    ManagerObserver* observer_;
    unsigned bytes_ = 0;
};

ur::Reference<Resource> ManagerImpl::buildObserved(KeyData const& key, ClassUsage& usage) {
    ObservedBuild build(*this, usage.keyClass);
    ur::Reference<Resource> built = buildTimed(key, usage);
    if (built) build.setSize(built->getSizeInBytes());
    return built;
}

// False if nothing was built, or the shim was removed meanwhile.
bool ManagerImpl::createResource(Shim& shim) {
    makeSpace(shim.size_, shim.residential_);
    if (!isAttached(shim)) return false;
    ur::Reference<KeyData> const key = shim.key_;
    ur::Reference<Resource> built = observer_ ? buildObserved(*key, *shim.usage_) : buildTimed(*key, *shim.usage_);
    if (!built) {
        ++statistics_.buildsWithout;
        return false;
    }
    unsigned const size = built->getSizeInBytes();
    if (!isAttached(shim)) return false;
    ++statistics_.builds;
    if (shim.keyType_ == Shim::Retained) shim.ref();
    shim.resource_ = std::move(built);
    link(shim);
    account(shim, *key, size, TraceRecorder::Event::build);
    return true;
}

/// Counts a resource that came into memory, and evicts others if needed.
void ManagerImpl::account(Shim& shim, KeyData const& key, unsigned size, TraceRecorder::Event event) {
    unsigned const expected = std::exchange(shim.size_, size);
    budget_.add(size, shim.residential_);
    if (size > sizeWorthAWarning) warnUnless(size, expected);
    record(event, shim);
    accountant_.resourceCreated(&shim);
    try {
        key.initializeResource(shim.resource_);
    } catch (...) {
        if (shim.isResourceAllocated()) clearAllocated(shim, size, Cause::buildFailure);
        throw;
    }
    enforceMemoryLimit(size);
}

void ManagerImpl::makeSpace(std::uint64_t bytes, bool residential) {
    if (bytes == 0 || budget_.limit() == 0) return;
    Budget::Room const room(budget_, bytes, residential);
    enforceMemoryLimit(bytes);
}

// A resource that a hook builds gets its room at once, by a nested eviction. Hooks may build resources as fast as they
// are evicted. So hooks build nothing more after as many clears as there were resources at first, or at the deepest
// nesting: the loop then ends and needs little stack. Further requests of hooks are left to the evictions under way.
void ManagerImpl::evict() {
    if (evictions_ == tuning_.nestedHooks) return;
    if (evictions_ == 0) clearsWithBuilds_ = lru_.count() + 1;
    {
        Scoped const oneMore(evictions_, evictions_ + 1);
        while (!lru_.empty() && budget_.isOverLimit()) {
            if (clearsWithBuilds_ > 0) --clearsWithBuilds_;
            ur::Reference<Shim> const head(&lru_.head());
            leaveMemory(*head, Cause::limit);
        }
    }
    if (budget_.isOverLimit()) reportExcess();
}

void ManagerImpl::reportExcess() const {
    debugChannel().print("Locked resources exceed memory limit by (%.02fMB)\n", impl::megabytes(budget_.excess()));
    Reports(*this).logUsageByType();
}

void ManagerImpl::clearOrPageOut(Shim& shim, Cause cause) {
    if (shim.isResourceAllocated() && !shim.isResourceLocked()) leaveMemory(shim, cause);
}

void ManagerImpl::leaveMemory(Shim& shim, Cause cause) {
    ur::Reference<Resource> const resource = shim.resource_;
    unsigned const size = resource->getSizeInBytes();
    if (!shim.isResourceAllocated() || shim.isResourceLocked()) return;
    if (shim.serializable_) {
        pager_.pageOut(shim, size);
    } else {
        clearAllocated(shim, size, cause);
    }
}

void ManagerImpl::clearAllocated(Shim& shim, unsigned size, Cause cause) {
    takeFromUsed(shim, size);
    dropResource(shim, cause);
}

/// Releases the resource and notifies its key. Requires: its bytes are already subtracted from the counters.
void ManagerImpl::dropResource(Shim& shim, Cause cause) {
    ur::Reference<KeyData> const key = shim.key_;
    takeResource(shim, cause).reset();
    key->resourceCleared();
}

ur::Reference<Resource> ManagerImpl::takeResource(Shim& shim, Cause cause) {
    ++cleared_[static_cast<std::size_t>(cause)];
    record(TraceRecorder::Event::clear, shim);
    noteLeaving(shim, cause);
    ur::Reference<Resource> taken = std::move(shim.resource_);
    if (shim.keyType_ == Shim::Retained) --shim.strongCount_;  // never the last: the table or a removal has one
    return taken;
}

void ManagerImpl::clear() {
    ur::vector<ur::Reference<Shim>> shims;
    shims.reserve(table_.size());
    table_.forEach([&](Shim& shim) { shims.emplace_back(&shim); });
    for (ur::Reference<Shim> const& shim : shims) clearOrPageOut(*shim, Cause::request);
    debugChannel().print("Resources cleared.\n");
}

void ManagerImpl::lock(Shim& shim) {
    if (!shim.manager_ || ++shim.lockCount_ != 1 || !shim.isResourceAllocated()) return;
    lru_.remove(shim);
    accountant_.resourceLocked(&shim);
    checkPeak(accountant_.maxLockedSize_, "Locked resources too large for size limit!\n");
}

void ManagerImpl::unlock(Shim& shim) {
    if (!shim.manager_ || shim.lockCount_ == 0 || --shim.lockCount_ != 0 || !shim.isResourceAllocated()) return;
    lru_.append(shim);
    accountant_.resourceUnlocked(&shim);
}

void ManagerImpl::startInteraction() noexcept {
    accountant_.startInteraction();
    watch();
}

void ManagerImpl::endInteraction() {
    accountant_.endInteraction();
    watch();
    checkPeak(accountant_.maxWorkingSet_, "Working set too large for size limit!\n");
}

void ManagerImpl::checkPeak(std::int64_t peak, char const* message) const {
    if (static_cast<std::uint64_t>(peak + impl::limitMargin) <= budget_.limit()) return;
    debugChannel().print("%s", message);
    Reports(*this).logUsageByType();
}

void ManagerImpl::setMemoryLimit(std::uint64_t bytes) {
    budget_.setLimit(bytes);
    limitChanged();
}

void ManagerImpl::limitChanged() {
    debugChannel().print("Memory limit set to %.02fMB\n", impl::megabytes(budget_.limit()));
    enforceMemoryLimit(0);
}

void ManagerImpl::allocatingExternal(unsigned bytes) {
    if (budget_.usesResidentSize()) return makeSpace(bytes, true);
    budget_.reserveExternal(bytes);
    limitChanged();
    accountant_.addExternal(bytes);
}

void ManagerImpl::deletedExternal(unsigned bytes) {
    if (budget_.usesResidentSize()) return;
    accountant_.removeExternal(bytes);
    budget_.releaseExternal(bytes);
    limitChanged();
}

}  // namespace urKRCache
