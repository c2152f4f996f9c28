// Finding shims and making their resources present.
#include <typeinfo>

#include "foundation/urOS/Filename.h"
#include "foundation/urOS/StopWatch.h"
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

constexpr std::uint64_t timedBuilds = 16;      ///< at first, all of them
constexpr std::uint64_t buildsPerSample = 64;  ///< then one of so many

}  // namespace

ManagerImpl::ManagerImpl(Manager& manager, urString::IString const& folder)
    : manager_(manager), pageFile_(urOS::Filename::join(folder, "urKRCachePageFile.dat")) {}

ur::Reference<Shim> ManagerImpl::createShim(ur::Reference<KeyData> const& key, Shim::KeyType type) {
    std::uint64_t const before = table_.version();
    ur::Reference<Shim> shim(new Shim(manager_, key, type));
    // Asking the key for its sizes may have brought an equal key in.
    Shim* const rival = table_.version() == before ? nullptr : table_.find(*key);
    if (rival || dying_) {
        withdraw(*shim);
        return rival ? ur::Reference<Shim>(rival) : shim;
    }
    shim->hash_ = key->hash();
    shim->serial_ = nextSerial_++;
    shim->usage_ = &usageOf(*key);
    table_.insert(*shim);
    key->shim_ = shim.get();
    key->shimOwner_ = this;
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
        if (!isAttached(*source)) return withdraw(shim);
    }
    for (ur::Reference<Shim> const& source : sources) shim.addChild(*source);
}

/// Takes back a shim that nobody has seen yet.
void ManagerImpl::withdraw(Shim& shim) noexcept {
    ur::Reference<Shim> const held = takeFromTable(shim);
    shim.manager_ = nullptr;
    shim.cutChildren();
    ur::Reference<KeyData> const key = std::move(shim.key_);
}

ur::Reference<Shim> ManagerImpl::takeFromTable(Shim& shim) noexcept {
    if (shim.key_->shim_ == &shim) shim.key_->shimOwner_ = nullptr;
    return table_.take(shim);
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

void ManagerImpl::setTraceRecorder(TraceRecorder* recorder) noexcept {
    trace_ = recorder;
    watch();
}

ur::Reference<Resource> ManagerImpl::accessAbsent(Shim& shim) {
    bool const isBusy = shim.building_ || shim.paging_;
    if (!isAttached(shim) || isBusy || evicting_ == Evicting::hooksMayNotBuild) return {};
    Scoped const building(shim.building_, true);
    bool const isReadBack = shim.pageEntry_ && pageIn(shim);
    if (!isReadBack && !createResource(shim)) return {};
    if (shim.manager_) accountant_.resourceAccessed(&shim);
    return shim.resource_;
}

/// Looking at the clock takes as long as a small build: of many builds, a few stand for all.
ur::Reference<Resource> ManagerImpl::buildTimed(KeyData const& key, ClassUsage& usage) {
    std::uint64_t const build = usage.builds++;
    bool const isSample = build % buildsPerSample == 0;
    if (build >= timedBuilds && !isSample) return key.createResource();
    urOS::StopWatch watch;
    watch.start();
    ur::Reference<Resource> built = key.createResource();
    usage.buildSeconds += watch.elapsed() * static_cast<double>(build < timedBuilds ? 1 : buildsPerSample);
    return built;
}

// False when nothing was built, or the shim was removed meanwhile.
bool ManagerImpl::createResource(Shim& shim) {
    makeSpace(shim.size_, shim.residential_);
    if (!isAttached(shim)) return false;
    ur::Reference<KeyData> const key = shim.key_;
    ur::Reference<Resource> built = buildTimed(*key, *shim.usage_);
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
    account(shim, size, TraceRecorder::Event::build);
    return true;
}

}  // namespace urKRCache
