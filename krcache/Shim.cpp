// Counting the holders of a shim and keeping its relatives.
#include "krcache/Shim.h"

#include <exception>
#include <utility>

#include "foundation/urOS/reportException.h"
#include "krcache/Manager.h"

namespace urKRCache {

Shim::Shim(Manager& manager, ur::Reference<KeyData> key, KeyType type)
    : manager_(&manager),
      size_(key->hasPredeterminedSize() ? key->getPredeterminedSize() : 0),
      keyType_(type),
      residential_(key->isResidential()),
      key_(std::move(key)) {}

Shim::~Shim() = default;

void Shim::lastUnref() const noexcept {
    ++strongCount_;
    try {
        manager_->onLastUnref(const_cast<Shim*>(this));
    } catch (...) {
        urOS::reportException("urKRCache::Shim::unref", std::current_exception());
    }
    --strongCount_;
}

void Shim::addChild(Shim& child) {
    auto const place = static_cast<std::uint32_t>(children_.size());
    children_.push_back({&child, static_cast<std::uint32_t>(child.parents_.size())});
    try {
        child.parents_.push_back({this, place});
    } catch (...) {
        children_.pop_back();
        throw;
    }
    child.weakRef();
}

// In place: cutting one link may move the mirror of the next, when both lead to the same child.
ur::vector<ur::Reference<Shim>> Shim::cutChildren() {
    ur::vector<ur::Reference<Shim>> former;
    former.reserve(children_.size());
    for (Link const& link : children_) {
        if (!link.shim) continue;
        former.emplace_back(link.shim);
        link.shim->forgetParent(link.mirror);
    }
    children_.clear();
    return former;
}

// The place in the parent's list stays, empty: the parent goes next, and others may have noted their places in it.
ur::vector<ur::Reference<Shim>> Shim::cutParents() {
    ur::vector<ur::Reference<Shim>> former;
    former.reserve(parents_.size() - cutParents_);
    for (Link const& link : std::exchange(parents_, {})) {
        if (!link.shim) continue;
        link.shim->children_[link.mirror].shim = nullptr;
        former.emplace_back(link.shim);
    }
    cutParents_ = 0;
    return former;
}

void Shim::forgetParent(std::uint32_t place) noexcept {
    parents_[place].shim = nullptr;
    if (++cutParents_ * 2 > parents_.size()) compactParents();
}

void Shim::compactParents() noexcept {
    std::uint32_t kept = 0;
    for (Link const link : parents_) {
        if (!link.shim) continue;
        link.shim->children_[link.mirror].mirror = kept;
        parents_[kept++] = link;
    }
    parents_.erase(parents_.begin() + kept, parents_.end());
    cutParents_ = 0;
}

}  // namespace urKRCache
