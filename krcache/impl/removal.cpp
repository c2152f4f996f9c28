// Removing keys with all that is built from them.
#include <new>
#include <utility>

#include "foundation/urOS/reportException.h"
#include "krcache/impl/ManagerImpl.h"

namespace urKRCache {

// Removals take no memory: they are on a stack of their own, which leads through the shims, so that a chain of
// dependents of any length needs no more of the thread's.
void ManagerImpl::remove(Shim& shim) {
    Shim const* const below = removals_;
    push(shim);
    run(below);
}

// A reference that is dropped inside a removal asks for its own turn: it must not go deeper with each dependent.
void ManagerImpl::removeUnreferenced(Shim& shim) {
    push(shim);
    if (removalRuns_ == 0) run(nullptr);
}

void ManagerImpl::push(Shim& shim) noexcept {
    if (!isAttached(shim)) return;
    shim.ref();
    shim.removal_ = Shim::Removal::clear;
    shim.below_ = std::exchange(removals_, &shim);
}

// Throws what a hook has thrown first, once everything has been removed.
void ManagerImpl::run(Shim const* below) {
    ++removalRuns_;
    while (removals_ != below) step(*removals_);
    --removalRuns_;
    if (removalRuns_ == 0 && removalFailure_) std::rethrow_exception(std::exchange(removalFailure_, nullptr));
}

template <class Work>
void ManagerImpl::shielded(Work&& work) noexcept {
    try {
        work();
    } catch (...) {
        if (!removalFailure_) removalFailure_ = std::current_exception();
    }
}

// A hook that runs here may begin other removals: they are on top then and end first. So do those of former relatives
// that are let go of one at a time, since each may be the last that counts.
void ManagerImpl::step(Shim& shim) noexcept {
    using Removal = Shim::Removal;
    switch (shim.removal_) {
        case Removal::none: return;
        case Removal::clear:
            shielded([&] { clearForRemoval(shim); });
            shim.cutLinks();
            shim.removal_ = Removal::dependents;
            return;
        case Removal::dependents:
            if (Shim* const parent = shim.nextFormerParent()) return push(*parent);
            shim.removal_ = Removal::release;
            return;
        case Removal::release:
            if (Shim* const relative = shim.takeFormerRelative()) return relative->unref();
            shim.removal_ = Removal::finish;
            return;
        case Removal::finish: shim.removal_ = Removal::done; return finish(shim);
        case Removal::done: removals_ = std::exchange(shim.below_, nullptr); shim.unref();
    }
}

void ManagerImpl::clearForRemoval(Shim& shim) {
    if (!shim.resource_) return;
    ur::Reference<KeyData> const key = shim.key_;
    if (shim.pageEntry_) {
        cleanUpPaging(shim);
    } else {
        takeFromUsed(shim);
    }
    ur::Reference<Resource> resource = takeResource(shim, Cause::removal);
    bool const isHeldElsewhere = resource->referenceCount() > 1;
    if (isHeldElsewhere && shim.hasParents()) shim.relatives_->resource.swap(resource);
    resource.reset();
    key->resourceCleared();
}

void ManagerImpl::finish(Shim& shim) noexcept {
    ur::Reference<KeyData> const key = shim.key_;
    ur::Reference<Shim> const held = takeFromTable(shim);
    shielded([&] { key->keyRemoved(); });
    record(TraceRecorder::Event::remove, shim);
    if (shim.hot_) accountant_.cool(shim);
    shim.manager_ = nullptr;
    shim.key_.reset();
    shim.relatives_.reset();
}

void ManagerImpl::removeReporting(Shim& shim) noexcept {
    try {
        remove(shim);
    } catch (...) {
        urOS::reportException("urKRCache::Manager", std::current_exception());
    }
}

// Keys that name each other are never without dependents: they come last. So does, in any order, what there was no
// memory to sort.
void ManagerImpl::removeAll() noexcept {
    dying_ = true;
    try {
        ur::vector<ur::Reference<Shim>> roots;
        table_.forEach([&](Shim& shim) {
            if (!shim.hasParents()) roots.emplace_back(&shim);
        });
        removeEach(std::move(roots));
    } catch (std::bad_alloc const&) {
    }
    std::size_t place = 0;
    while (Shim* const shim = table_.firstFrom(place)) removeReporting(*shim);
}

/// And what has no dependents left then.
void ManagerImpl::removeEach(ur::vector<ur::Reference<Shim>> shims) {
    while (!shims.empty()) {
        ur::Reference<Shim> const root = std::move(shims.back());
        shims.pop_back();
        ur::vector<ur::Reference<Shim>> children;
        for (Shim::Link const& link : root->children()) {
            if (link.shim) children.emplace_back(link.shim);
        }
        removeReporting(*root);
        for (ur::Reference<Shim>& child : children) {
            if (isAttached(*child) && !child->hasParents()) shims.push_back(std::move(child));
        }
    }
}

}  // namespace urKRCache
