// Counts the references of a shim and keeps its links to other shims.
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
    return hasLinks() ? std::span<Link const>(relatives_->children) : std::span<Link const>();
}

std::span<Shim::Link const> Shim::parents() const noexcept {
    return hasLinks() ? std::span<Link const>(relatives_->parents) : std::span<Link const>();
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

// Works in place, without allocating. Cutting one link may move the mirror of the next one when both lead to the same
// child. `parents` keeps a cut link as an empty entry, because other shims refer to its entries by index.
void Shim::cutLinks() noexcept {
    if (!relatives_) return;
    for (Link const& link : relatives_->children) {
        if (!link.shim) continue;
        link.shim->ref();
        link.shim->weakUnref(1);
        link.shim->forgetParent(link.mirror);
    }
    for (Link const& link : relatives_->parents) {
        if (!link.shim) continue;
        link.shim->ref();
        weakUnref(1);
        link.shim->relatives_->children[link.mirror].shim = nullptr;
    }
}

Shim* Shim::nextFormerParent() noexcept {
    while (relatives_ && relatives_->visited < relatives_->parents.size()) {
        if (Shim* const parent = relatives_->parents[relatives_->visited++].shim) return parent;
    }
    if (relatives_) relatives_->visited = 0;  // the second pass releases them
    return nullptr;
}

Shim* Shim::takeFormerRelative() noexcept {
    if (!relatives_) return nullptr;
    Links& parents = relatives_->parents;
    Links& children = relatives_->children;
    while (relatives_->visited < parents.size() + children.size()) {
        std::size_t const place = relatives_->visited++;
        Link& link = place < parents.size() ? parents[place] : children[place - parents.size()];
        if (link.shim) return std::exchange(link.shim, nullptr);
    }
    return nullptr;
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
