// The public interface of the manager, and the process-wide manager and debug channel.
#include "krcache/Manager.h"

#include <limits>
#include <stdexcept>

#include "krcache/debugChannel.h"
#include "krcache/impl/Audit.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/Reports.h"
#include "krcache/impl/Tuning.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

Manager* (*managerFunction)() = nullptr;

}  // namespace

urOS::DebugChannel& debugChannel() {
    static urOS::DebugChannel channel;
    return channel;
}

void setCacheManagerFunc(Manager* (*function)()) { managerFunction = function; }

Manager& getKeyResourceManager() {
    Manager* const manager = managerFunction ? managerFunction() : nullptr;
    if (!manager) throw std::logic_error("no cache manager: call urKRCache::setCacheManagerFunc with a function first");
    return *manager;
}

Manager::Manager(urString::IString const& folder) : Manager(folder, Tuning()) {}

Manager::Manager(urString::IString const& folder, Tuning const& tuning)
    : impl_(std::make_unique<ManagerImpl>(*this, folder, tuning)) {}

Manager::~Manager() { impl_->removeAll(); }

ur::Reference<Shim> Manager::getShim(ur::Reference<KeyData> key, Shim::KeyType type) {
    if (Shim* const shim = impl_->known(*key)) [[likely]]
        return ur::Reference<Shim>(shim);
    return impl_->findOrCreateShim(key, type);
}

ur::Reference<Shim> Manager::findShim(ur::Reference<KeyData> key) const {
    return ur::Reference<Shim>(impl_->find(*key));
}

ur::Reference<Resource> Manager::accessResource(ur::Reference<Shim> shim) { return impl_->access(*shim); }
void Manager::lockResource(ur::Reference<Shim> shim) { impl_->lock(*shim); }
void Manager::unlockResource(ur::Reference<Shim> shim) { impl_->unlock(*shim); }
void Manager::clearResource(ur::Reference<Shim> shim) { impl_->clear(*shim); }
void Manager::removeResource(ur::Reference<Shim> shim) { impl_->remove(*shim); }
void Manager::onLastUnref(Shim* shim) { impl_->remove(*shim); }
void Manager::clear() { impl_->clear(); }
void Manager::setSerializable(ur::Reference<Shim> shim) { impl_->setSerializable(*shim); }

void Manager::startInteraction() { impl_->startInteraction(); }
void Manager::endInteraction() { impl_->endInteraction(); }

void Manager::setMemoryLimit(unsigned bytes) { impl_->setMemoryLimit(bytes); }
void Manager::setMemoryLimit64(std::uint64_t bytes) { impl_->setMemoryLimit(bytes); }
unsigned Manager::getMemoryLimit() const { return impl::saturated(impl_->budget().limit()); }
std::uint64_t Manager::getMemoryLimit64() const { return impl_->budget().limit(); }
unsigned Manager::getMemoryUsed() const { return impl::saturated(impl_->budget().used()); }
std::uint64_t Manager::getMemoryUsed64() const { return impl_->budget().used(); }
void Manager::enforceMemoryLimit(unsigned incoming) { impl_->enforceMemoryLimit(incoming); }
void Manager::setUseResidentSize() { impl_->setUseResidentSize(); }
unsigned Manager::getResidentSize() const { return impl::saturated(impl_->residentSize()); }
std::uint64_t Manager::getResidentSize64() const { return impl_->residentSize(); }
void Manager::allocatingExternalResource(unsigned bytes) { impl_->allocatingExternal(bytes); }
void Manager::deletedExternalResource(unsigned bytes) { impl_->deletedExternal(bytes); }

int Manager::numKeys() const {
    return static_cast<int>(std::min<std::size_t>(impl_->keyCount(), std::numeric_limits<int>::max()));
}

void Manager::logUsageByType() const { Reports(*impl_).logUsageByType(); }
Statistics Manager::statistics() const { return Reports(*impl_).statistics(); }
urString::CString Manager::audit() const { return Audit(*impl_).fault(); }
void Manager::printDependencies(urOS::OStream& out) const { Reports(*impl_).printDependencies(out); }
void Manager::printDependenciesAsDot(urOS::OStream& out) const { Reports(*impl_).printDependenciesAsDot(out); }
void Manager::setObserver(ManagerObserver* observer) { impl_->setObserver(observer); }
void Manager::setTraceRecorder(TraceRecorder* recorder) { impl_->setTraceRecorder(recorder); }
void Manager::setClearCheck(bool clearCheck) { impl_->setClearCheck(clearCheck); }

}  // namespace urKRCache
