// Keeping resources within the limit, and the locks that hold them.
#include <algorithm>
#include <utility>

#include "foundation/urOS/sysInfo.h"
#include "krcache/debugChannel.h"
#include "krcache/impl/ManagerImpl.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

constexpr std::uint64_t sampleInterval = 2097152;  ///< bytes requested between two samples of the resident size
constexpr std::uint64_t unknownRequest = 209715;   ///< what a request without a size counts: a tenth of it

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
        if (shim.isResourceAllocated()) clearAllocated(shim, Cause::buildFailure);
        throw;
    }
    enforceMemoryLimit(size);
}

/// The resource has come into memory.
void ManagerImpl::addToUsed(Shim const& shim) noexcept {
    used_ += shim.size_;
    if (shim.residential_) residentialUsed_ += shim.size_;
    statistics_.peakMemoryUsed = std::max(statistics_.peakMemoryUsed, used_);
}

/// The resource leaves memory, and the shim the list.
void ManagerImpl::takeFromUsed(Shim& shim) noexcept {
    used_ -= shim.size_;
    if (shim.residential_) residentialUsed_ -= shim.size_;
    accountant_.resourceCleared(&shim);
    unlink(shim);
}

void ManagerImpl::makeSpace(std::uint64_t bytes, bool residential) {
    if (bytes == 0 || limit_ == 0) return;
    Reservation const all(reserved_, bytes);
    Reservation const resident(residentialReserved_, residential ? bytes : 0);
    enforceMemoryLimit(bytes);
}

void ManagerImpl::sampleResidentSize(std::uint64_t incoming) {
    bytesSinceSample_ += incoming == 0 ? unknownRequest : incoming;
    if (bytesSinceSample_ <= sampleInterval) return;
    measureOtherResident();
    bytesSinceSample_ = 0;
}

void ManagerImpl::measureOtherResident() {
    std::uint64_t const resident = residentSize();
    // Bytes that resources have not touched yet are not resident.
    otherResident_ = resident - std::min(resident, residentialUsed_ + residentialReserved_);
}

// Hooks may bring resources back as fast as they go. Once all that were there at first have gone, hooks may build
// nothing more, so that this ends.
void ManagerImpl::evict() {
    {
        Scoped const evicting(evicting_, Evicting::hooksMayBuild);
        for (std::size_t left = lru_.count(); !lru_.empty() && isOverLimit(); --left) {
            if (left == 0) evicting_ = Evicting::hooksMayNotBuild;
            ur::Reference<Shim> const head(&lru_.head());
            leaveMemory(*head, Cause::limit);
        }
    }
    if (isOverLimit()) reportExcess();
}

void ManagerImpl::reportExcess() const {
    debugChannel().print("Locked resources exceed memory limit by (%.02fMB)\n",
                         impl::megabytes(used() + otherResident_ - limit_));
    logUsageByType();
}

void ManagerImpl::clearOrPageOut(Shim& shim, Cause cause) {
    if (shim.isResourceAllocated() && !shim.isResourceLocked()) leaveMemory(shim, cause);
}

void ManagerImpl::leaveMemory(Shim& shim, Cause cause) {
    if (shim.serializable_) {
        pageOut(shim);
    } else {
        clearAllocated(shim, cause);
    }
}

void ManagerImpl::clearAllocated(Shim& shim, Cause cause) {
    takeFromUsed(shim);
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
    enforceMemoryLimit(0);
}

void ManagerImpl::setUseResidentSize() {
    useResidentSize_ = true;
    measureOtherResident();
}

std::uint64_t ManagerImpl::residentSize() { return urOS::sysInfo().processResidentMemory() << 10; }

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
