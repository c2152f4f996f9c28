// Counting the holders of a shim and keeping its relatives.
#include "krcache/Shim.h"

#include <exception>
#include <utility>

#include "foundation/urOS/reportException.h"
#include "krcache/Manager.h"

namespace urKRCache {

Shim::Shim(Manager& manager, ur::Reference<KeyData> key, KeyType type)
    : key_(std::move(key)),
      manager_(&manager),
      size_(key_->hasPredeterminedSize() ? key_->getPredeterminedSize() : 0),
      keyType_(type),
      residential_(key_->isResidential()) {}

Shim::~Shim() { static_assert(sizeof(Shim) <= nodeSize); }

void Shim::lastUnref() const noexcept {
    ++strongCount_;
    try {
        manager_->onLastUnref(const_cast<Shim*>(this));
    } catch (...) {
        urOS::reportException("urKRCache::Shim::unref", std::current_exception());
    }
    --strongCount_;
}

Shim::Relatives& Shim::relatives() {
    if (!relatives_) relatives_ = std::make_unique<Relatives>();
    return *relatives_;
}

std::span<Shim::Link const> Shim::children() const noexcept {
    return relatives_ ? std::span<Link const>(relatives_->children) : std::span<Link const>();
}

std::span<Shim::Link const> Shim::parents() const noexcept {
    return relatives_ ? std::span<Link const>(relatives_->parents) : std::span<Link const>();
}

void Shim::addChild(Shim& child) {
    Links& children = relatives().children;
    Links& back = child.relatives().parents;
    children.push_back({&child, static_cast<std::uint32_t>(back.size())});
    try {
        back.push_back({this, static_cast<std::uint32_t>(children.size() - 1)});
    } catch (...) {
        children.pop_back();
        throw;
    }
    child.weakRef();
}

// In place: cutting one link may move the mirror of the next, when both lead to the same child.
ur::vector<ur::Reference<Shim>> Shim::cutChildren() {
    ur::vector<ur::Reference<Shim>> former;
    former.reserve(children().size());
    for (Link const& link : children()) {
        if (!link.shim) continue;
        former.emplace_back(link.shim);
        link.shim->forgetParent(link.mirror);
    }
    if (relatives_) relatives_->children.clear();
    return former;
}

// The place in the parent's list stays, empty: the parent goes next, and others may have noted their places in it.
ur::vector<ur::Reference<Shim>> Shim::cutParents() {
    ur::vector<ur::Reference<Shim>> former;
    if (!hasParents()) return former;
    for (Link const& link : std::exchange(relatives_->parents, {})) {
        if (!link.shim) continue;
        link.shim->relatives_->children[link.mirror].shim = nullptr;
        former.emplace_back(link.shim);
    }
    relatives_->cutParents = 0;
    return former;
}

void Shim::forgetParent(std::uint32_t place) noexcept {
    relatives_->parents[place].shim = nullptr;
    if (++relatives_->cutParents * 2 > relatives_->parents.size()) compactParents();
}

void Shim::compactParents() noexcept {
    Links& parents = relatives_->parents;
    std::uint32_t kept = 0;
    for (Link const link : parents) {
        if (!link.shim) continue;
        link.shim->relatives_->children[link.mirror].mirror = kept;
        parents[kept++] = link;
    }
    parents.erase(parents.begin() + kept, parents.end());
    relatives_->cutParents = 0;
}

}  // namespace urKRCache
