// Keeping resources within the limit, and the locks that hold them.
#include <algorithm>
#include <utility>

#include "krcache/debugChannel.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

constexpr unsigned sizeWorthAWarning = 524288;
constexpr std::int32_t sizeTolerance = 1024;

void warnUnless(std::uint32_t size, std::uint32_t expected) {
    auto const difference = static_cast<std::int32_t>(size - expected);
    if (difference > -sizeTolerance && difference < sizeTolerance) return;
    debugChannel().print("Unanticipated %.02fMB resource!\n", impl::megabytes(size));
}

}  // namespace

/// Counts a resource that has come into memory, and makes the room that it needs.
void ManagerImpl::account(Shim& shim, KeyData const& key, unsigned size, TraceRecorder::Event event) {
    unsigned const expected = std::exchange(shim.size_, size);
    addToUsed(shim);
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

/// The resource has come into memory.
void ManagerImpl::addToUsed(Shim const& shim) noexcept {
    used_.add(shim.size_);
    if (shim.residential_) residentialUsed_.add(shim.size_);
    statistics_.peakMemoryUsed = std::max(statistics_.peakMemoryUsed, used_.total);
}

void ManagerImpl::makeSpace(std::uint64_t bytes, bool residential) {
    if (bytes == 0 || limit_ == 0) return;
    Reservation const all(reserved_, bytes);
    Reservation const resident(residentialReserved_, residential ? bytes : 0);
    enforceMemoryLimit(bytes);
}

void ManagerImpl::sampleResidentSize(std::uint64_t incoming) {
    bytesSinceSample_ += incoming == 0 ? tuning_.sampleInterval / 10 : incoming;
    if (bytesSinceSample_ <= tuning_.sampleInterval) return;
    measureOtherResident();
    bytesSinceSample_ = 0;
}

void ManagerImpl::measureOtherResident() {
    std::uint64_t const ours = residentialUsed_.total + residentialReserved_;
    otherResident_ = static_cast<std::int64_t>(residentSize()) - static_cast<std::int64_t>(ours);
}

// What hooks build gets its room at once, by an eviction inside this one. Hooks may bring resources back as fast as
// they go: once as many have gone as there were at first, or so many evictions are under way, hooks build nothing more,
// so that this ends and takes little of the stack. What hooks ask for beyond that is left to the evictions under way.
void ManagerImpl::evict() {
    if (evictions_ == tuning_.nestedHooks) return;
    if (evictions_ == 0) clearsWithBuilds_ = lru_.count() + 1;
    {
        Scoped const oneMore(evictions_, evictions_ + 1);
        while (!lru_.empty() && isOverLimit()) {
            if (clearsWithBuilds_ > 0) --clearsWithBuilds_;
            ur::Reference<Shim> const head(&lru_.head());
            leaveMemory(*head, Cause::limit);
        }
    }
    if (isOverLimit()) reportExcess();
}

void ManagerImpl::reportExcess() const {
    auto const excess = static_cast<std::uint64_t>(bounded() - bound_);
    debugChannel().print("Locked resources exceed memory limit by (%.02fMB)\n", impl::megabytes(excess));
    logUsageByType();
}

void ManagerImpl::clearOrPageOut(Shim& shim, Cause cause) {
    if (shim.isResourceAllocated() && !shim.isResourceLocked()) leaveMemory(shim, cause);
}

void ManagerImpl::leaveMemory(Shim& shim, Cause cause) {
    ur::Reference<Resource> const resource = shim.resource_;
    unsigned const size = resource->getSizeInBytes();
    if (!shim.isResourceAllocated() || shim.isResourceLocked()) return;
    if (shim.serializable_) {
        pageOut(shim, size);
    } else {
        clearAllocated(shim, size, cause);
    }
}

void ManagerImpl::clearAllocated(Shim& shim, unsigned size, Cause cause) {
    takeFromUsed(shim, size);
    dropResource(shim, cause);
}

/// The resource object goes and its key learns of it; its bytes are out of the counters already.
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
    if (static_cast<std::uint64_t>(peak + impl::limitMargin) <= limit_) return;
    debugChannel().print("%s", message);
    logUsageByType();
}

void ManagerImpl::setMemoryLimit(std::uint64_t bytes) {
    limitDebt_ = 0;
    applyMemoryLimit(bytes);
}

void ManagerImpl::applyMemoryLimit(std::uint64_t bytes) {
    debugChannel().print("Memory limit set to %.02fMB\n", impl::megabytes(bytes));
    limit_ = bytes;
    bound_ = bytes == 0 ? noBound : static_cast<std::int64_t>(std::min<std::uint64_t>(bytes, noBound));
    enforceMemoryLimit(0);
}

void ManagerImpl::setUseResidentSize() {
    useResidentSize_ = true;
    measureOtherResident();
}

// What the limit cannot give up without becoming 0, which means no limit, it owes until deletions pay it back.
void ManagerImpl::allocatingExternal(unsigned bytes) {
    if (useResidentSize_) return makeSpace(bytes, true);
    std::uint64_t const given = limit_ == 0 ? 0 : std::min<std::uint64_t>(bytes, limit_ - 1);
    if (limit_ != 0) limitDebt_ += bytes - given;
    applyMemoryLimit(limit_ - given);
    accountant_.addExternal(bytes);
}

void ManagerImpl::deletedExternal(unsigned bytes) {
    if (useResidentSize_) return;
    accountant_.removeExternal(bytes);
    std::uint64_t const paidBack = std::min<std::uint64_t>(bytes, limitDebt_);
    limitDebt_ -= paidBack;
    applyMemoryLimit(limit_ == 0 ? 0 : limit_ + bytes - paidBack);
}

}  // namespace urKRCache
