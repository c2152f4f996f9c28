// Removing keys with all that is built from them.
#include "foundation/urOS/reportException.h"
#include "krcache/impl/ManagerImpl.h"

namespace urKRCache {

void ManagerImpl::remove(Shim& shim) {
    std::size_t const base = removals_.size();
    push(shim);
    run(base);
}

// A reference that is dropped inside a removal asks for its own turn: it must not go deeper with each dependent.
void ManagerImpl::removeUnreferenced(Shim& shim) {
    push(shim);
    if (removalRuns_ == 0) run(0);
}

void ManagerImpl::push(Shim& shim) {
    if (!isAttached(shim)) return;
    removals_.emplace_back().shim.reset(&shim);
    shim.removing_ = true;
}

// Throws what a hook has thrown first, once everything has been removed.
void ManagerImpl::run(std::size_t base) {
    ++removalRuns_;
    while (removals_.size() > base) step(removals_.back());
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

// A hook that runs here may begin other removals: they are on top then and end first.
void ManagerImpl::step(Removal& removal) {
    using Stage = Removal::Stage;
    switch (removal.stage) {
        case Stage::clear:
            removal.stage = Stage::dependents;
            shielded([&] { clearForRemoval(removal); });
            return disconnect(removal);
        case Stage::dependents:
            if (removal.nextParent < removal.parents.size()) return push(*removal.parents[removal.nextParent++]);
            removal.stage = Stage::release;
            return;
        case Stage::release: return release(removal);
        case Stage::finish: removal.stage = Stage::done; return finish(removal);
        case Stage::done: removals_.pop_back();
    }
}

void ManagerImpl::clearForRemoval(Removal& removal) {
    Shim& shim = *removal.shim;
    if (!shim.resource_) return;
    ur::Reference<KeyData> const key = shim.key_;
    if (shim.pageEntry_) {
        cleanUpPaging(shim);
    } else {
        takeFromUsed(shim);
    }
    removal.resource = takeResource(shim, Cause::removal);
    if (!shim.hasParents()) removal.resource.reset();
    key->resourceCleared();
}

void ManagerImpl::disconnect(Removal& removal) {
    removal.children = removal.shim->cutChildren();
    removal.parents = removal.shim->cutParents();
    for (ur::Reference<Shim> const& child : removal.children) child->weakUnref(1);
    removal.shim->weakUnref(static_cast<int>(removal.parents.size()));
}

// One at a time, since each may be the last that counts and put another removal on top.
void ManagerImpl::release(Removal& removal) {
    std::size_t const next = removal.released++;
    if (next < removal.parents.size()) {
        removal.parents[next].reset();
    } else if (next - removal.parents.size() < removal.children.size()) {
        removal.children[next - removal.parents.size()].reset();
    } else {
        removal.stage = Removal::Stage::finish;
    }
}

void ManagerImpl::finish(Removal& removal) {
    Shim& shim = *removal.shim;
    ur::Reference<KeyData> const key = shim.key_;
    ur::Reference<Shim> const held = takeFromTable(shim);
    shielded([&] { key->keyRemoved(); });
    record(TraceRecorder::Event::remove, shim);
    if (shim.hot_) accountant_.cool(shim);
    shim.manager_ = nullptr;
    shim.key_.reset();
    removal.resource.reset();
}

// Keys that name each other are never without dependents: they come last.
void ManagerImpl::removeAll() {
    dying_ = true;
    ur::vector<ur::Reference<Shim>> roots;
    table_.forEach([&](Shim& shim) {
        if (!shim.hasParents()) roots.emplace_back(&shim);
    });
    removeEach(std::move(roots));
    ur::vector<ur::Reference<Shim>> rest;
    table_.forEach([&](Shim& shim) { rest.emplace_back(&shim); });
    removeEach(std::move(rest));
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
        try {
            remove(*root);
        } catch (...) {
            urOS::reportException("urKRCache::Manager", std::current_exception());
        }
        for (ur::Reference<Shim>& child : children) {
            if (isAttached(*child) && !child->hasParents()) shims.push_back(std::move(child));
        }
    }
}

}  // namespace urKRCache
