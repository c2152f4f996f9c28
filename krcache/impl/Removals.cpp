// Removes keys with everything built from them.
#include "krcache/impl/Removals.h"

#include <new>
#include <utility>

#include "foundation/urOS/reportException.h"
#include "krcache/impl/ManagerImpl.h"

namespace urKRCache {

// Removals allocate nothing: they form a stack that is linked through the shims, so that a chain of dependents of any
// length does not deepen the thread's stack. What a hook removes is gone before the hook continues, unless hooks nest
// too deeply, as destructors of keys in a long chain do; then it waits until the hook returns.
void Removals::remove(Shim& shim) {
    Shim const* const below = top_;
    push(shim);
    if (depth_ < manager_.tuning_.nestedHooks) run(below);
}

/// Begins a removal. From here on look-ups do not find the shim.
void Removals::push(Shim& shim) noexcept {
    if (!manager_.isAttached(shim)) return;
    shim.ref();
    shim.removal_ = Shim::Removal::clear;
    KeyData::Memo& memo = shim.key_->memo_;
    if (memo.shim == &shim) memo.owner = nullptr;
    shim.nextOnStack_ = std::exchange(top_, &shim);
}

// Throws a hook's first exception after everything has been removed.
void Removals::run(Shim const* below) {
    ++depth_;
    while (top_ != below) step(*top_);
    --depth_;
    if (depth_ == 0) std::exchange(failure_, urOS::FirstError()).rethrow();
}

/// Runs hooks for the shim on top of the stack. Reverses the removals that had to wait, so that the earliest runs
/// first.
template <class Work>
void Removals::callHooks(Shim& shim, Work&& work) noexcept {
    failure_.guard(work);
    Shim* waiting = std::exchange(top_, &shim);
    while (waiting != &shim) {
        Shim* const next = waiting->nextOnStack_;
        waiting->nextOnStack_ = std::exchange(top_, waiting);
        waiting = next;
    }
}

// Former relatives are released one at a time, because each reference may be the last one that counts: that relative's
// removal, then on top, ends first.
void Removals::step(Shim& shim) noexcept {
    using Removal = Shim::Removal;
    switch (shim.removal_) {
        case Removal::none: return;
        case Removal::clear:
            callHooks(shim, [&] { clearForRemoval(shim); });
            shim.cutLinks();
            shim.removal_ = Removal::dependents;
            return;
        case Removal::dependents:
            if (Shim* const parent = shim.nextFormerParent()) return push(*parent);
            shim.removal_ = Removal::release;
            return;
        case Removal::release:
            if (Shim* const relative = shim.takeFormerRelative()) return releaseRelative(*relative);
            shim.removal_ = Removal::finish;
            return;
        case Removal::finish: shim.removal_ = Removal::done; return finish(shim);
        case Removal::done: top_ = std::exchange(shim.nextOnStack_, nullptr); shim.unref();
    }
}

void Removals::clearForRemoval(Shim& shim) {
    if (!shim.resource_) return;
    unsigned const size = sizeForRemoval(shim);
    if (!shim.resource_) return;
    if (shim.pageEntry_) {
        manager_.pager_.release(shim);
    } else {
        manager_.takeFromUsed(shim, size);
    }
    ur::Reference<Resource> resource = manager_.takeResource(shim, Leaving::removal);
    bool const isHeldElsewhere = resource->referenceCount() > 1;
    if (isHeldElsewhere && shim.hasParents()) shim.relatives_->resource.swap(resource);
    resource.reset();
    shim.key_->resourceCleared();
}

/// The size now, or the shim's last known size if asking the resource throws.
unsigned Removals::sizeForRemoval(Shim const& shim) noexcept {
    unsigned size = shim.size_;
    if (shim.pageEntry_) return size;
    ur::Reference<Resource> const resource = shim.resource_;
    failure_.guard([&] { size = resource->getSizeInBytes(); });
    return size;
}

void Removals::finish(Shim& shim) noexcept {
    manager_.table_.take(shim).reset();
    callHooks(shim, [&] { shim.key_->keyRemoved(); });
    manager_.record(TraceRecorder::Event::remove, shim);
    if (shim.hot_) manager_.accountant_.removeFromWorkingSet(shim);
    shim.manager_ = nullptr;
    callHooks(shim, [&] {
        shim.relatives_.reset();
        shim.key_.reset();
    });
}

/// Releases one reference. If it is the last one that counts, the removal is pushed on the stack.
void Removals::releaseRelative(Shim& relative) noexcept {
    if (relative.strongCount_ - 1 == relative.weakCount_) push(relative);
    relative.unref();
}

void Removals::removeReporting(Shim& shim) noexcept {
    try {
        remove(shim);
    } catch (...) {
        urOS::reportException("urKRCache::Manager", std::current_exception());
    }
}

// Keys in a cycle always have dependents, so they come last. If memory for sorting runs out, the rest goes in any
// order.
void Removals::removeAll() noexcept {
    manager_.shuttingDown_ = true;
    try {
        ur::vector<ur::Reference<Shim>> roots;
        manager_.table_.forEach([&](Shim& shim) {
            if (!shim.hasParents()) roots.emplace_back(&shim);
        });
        removeEach(std::move(roots));
    } catch (std::bad_alloc const&) {
    }
    std::size_t place = 0;
    while (Shim* const shim = manager_.table_.firstFrom(place)) removeReporting(*shim);
}

/// Removes the shims, and then those that have no dependents left.
void Removals::removeEach(ur::vector<ur::Reference<Shim>> shims) {
    while (!shims.empty()) {
        ur::Reference<Shim> const root = std::move(shims.back());
        shims.pop_back();
        ur::vector<ur::Reference<Shim>> children;
        for (Shim::Link const& link : root->children()) {
            if (link.shim) children.emplace_back(link.shim);
        }
        removeReporting(*root);
        for (ur::Reference<Shim>& child : children) {
            if (manager_.isAttached(*child) && !child->hasParents()) shims.push_back(std::move(child));
        }
    }
}

}  // namespace urKRCache
