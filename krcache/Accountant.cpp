// Counts locked, working-set and external bytes.
#include "krcache/Accountant.h"

#include "krcache/debugChannel.h"
#include "krcache/impl/sizes.h"

namespace urKRCache {
namespace {

double megabytes(std::int64_t bytes) {
    return impl::megabytes(static_cast<std::uint64_t>(std::max<std::int64_t>(bytes, 0)));
}

}  // namespace

Accountant::Accountant() noexcept = default;
Accountant::Accountant(Accountant const&) = default;
Accountant& Accountant::operator=(Accountant const&) = default;
Accountant::~Accountant() = default;

void Accountant::startInteraction() noexcept {
    inInteraction_ = true;
    hotSize_ = 0;
    maxHotSize_ = 0;
}

void Accountant::endInteraction() {
    inInteraction_ = false;
    if (maxHotSize_ > maxWorkingSet_) {
        maxWorkingSet_ = maxHotSize_;
        debugChannel().print("Maximum working set is %.02fMB (%.02f external)\n", megabytes(maxHotSize_),
                             megabytes(externalSize_));
    }
    for (Shim* const shim : hotSet_) shim->hot_ = false;
    hotSet_.clear();
}

void Accountant::resourceLocked(Shim* shim) { addLocked(shim->size_); }

void Accountant::resourceUnlocked(Shim* shim) noexcept { lockedSize_ -= shim->size_; }

void Accountant::addExternal(unsigned bytes) {
    debugChannel().print("Creating a %.02fMB external resource.\n", megabytes(bytes));
    externalSize_ += bytes;
    addHot(bytes);
    addLocked(bytes);
}

void Accountant::removeExternal(unsigned bytes) {
    debugChannel().print("Destroyed a %.02fMB external resource.\n", megabytes(bytes));
    externalSize_ -= bytes;
    hotSize_ -= bytes;
    lockedSize_ -= bytes;
}

unsigned Accountant::maxLockedSize() const noexcept {
    return impl::saturated(static_cast<std::uint64_t>(maxLockedSize_));
}

unsigned Accountant::maxWorkingSet() const noexcept {
    return impl::saturated(static_cast<std::uint64_t>(maxWorkingSet_));
}

void Accountant::addToWorkingSet(Shim& shim) {
    hotSet_.insert(&shim);
    shim.hot_ = true;
    addHot(shim.size_);
}

void Accountant::forgetHot(Shim& shim) noexcept {
    if (inInteraction_) hotSize_ -= shim.size_;
    removeFromWorkingSet(shim);
}

void Accountant::removeFromWorkingSet(Shim& shim) noexcept {
    hotSet_.erase(&shim);
    shim.hot_ = false;
}

void Accountant::addHot(std::int64_t bytes) noexcept {
    hotSize_ += bytes;
    if (hotSize_ > maxHotSize_) maxHotSize_ = hotSize_;
}

void Accountant::addLocked(std::int64_t bytes) {
    lockedSize_ += bytes;
    if (lockedSize_ <= maxLockedSize_) return;
    maxLockedSize_ = lockedSize_;
    debugChannel().print("Maximum locked size is %.02fMB (%.02f external)\n", megabytes(maxLockedSize_),
                         megabytes(externalSize_));
}

}  // namespace urKRCache
