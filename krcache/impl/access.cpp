// Finding shims and making their resources present.
#include <new>
#include <typeinfo>

#include "foundation/urOS/Filename.h"
#include "foundation/urOS/StopWatch.h"
#include "foundation/urOS/reportException.h"
#include "krcache/impl/ManagerImpl.h"

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

}  // namespace

ManagerImpl::ManagerImpl(Manager& manager, urString::IString const& folder, Tuning const& tuning)
    : manager_(manager),
      tuning_(tuning),
      table_(tuning.tableSlots),
      pageFile_(urOS::Filename::join(folder, "urKRCachePageFile.dat"), tuning.pageExtension, tuning.pageBlock) {}

ur::Reference<Shim> ManagerImpl::findOrCreateShim(ur::Reference<KeyData> const& key, Shim::KeyType type) {
    Shim* const shim = table_.find(*key);
    return shim ? ur::Reference<Shim>(shim) : createShim(key, type);
}

ur::Reference<Shim> ManagerImpl::createShim(ur::Reference<KeyData> const& key, Shim::KeyType type) {
    std::uint64_t const before = table_.version();
    ur::Reference<Shim> shim(new Shim(manager_, key, type));
    shim->manager_ = nullptr;  // not before it is in the table, from which it is to be removed
    shim->hash_ = key->hash();
    // Asking the key for its hash and sizes may have brought an equal key in.
    Shim* const rival = table_.version() == before ? nullptr : table_.find(*key);
    if (rival) return ur::Reference<Shim>(rival);
    if (dying_) {
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
        withdraw(*shim);
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
        // What is built from something removed is as good as removed itself.
        if (!isAttached(*source)) return remove(shim);
    }
    for (ur::Reference<Shim> const& source : sources) shim.addChild(*source);
}

/// Removes a shim because of an exception, which counts more than one from here. Its key may have used it already.
void ManagerImpl::withdraw(Shim& shim) noexcept {
    try {
        remove(shim);
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

// What there is no memory for is missing from the trace: nothing else may depend on there being one.
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
    bool const isReadBack = shim.pageEntry_ && pageIn(shim);
    if (!isReadBack && !createResource(shim)) return {};
    if (shim.manager_) accountant_.resourceAccessed(&shim);
    return shim.resource_;
}

/// Looking at the clock takes as long as a small build: of many builds, a few stand for all.
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

/// Tells the observer of the start of a build and, when this goes, of its end.
class ManagerImpl::ObservedBuild {
public:
    /// Requires: there is one.
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

// False when nothing was built, or the shim was removed meanwhile.
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

}  // namespace urKRCache
