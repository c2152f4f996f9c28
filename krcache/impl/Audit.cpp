// Checks what must hold between two calls of a manager.
#include "krcache/impl/Audit.h"

#include "krcache/impl/ManagerImpl.h"

namespace urKRCache {

using urString::CString;

CString Audit::fault() const {
    char const* what = nullptr;
    std::uint32_t serial = 0;
    manager_.table_.forEach([&](Shim const& shim) {
        if (what) return;
        what = faultOf(shim);
        if (!what) what = faultOfLinks(shim);
        serial = shim.serial_;
    });
    if (what) return CString::format("shim #%u: %s", serial, what);
    what = faultOfList();
    if (!what) what = faultOfSums();
    if (!what) what = manager_.pager_.fault(pagedOutCount());
    return what ? what : "";
}

char const* Audit::faultOf(Shim const& shim) const {
    bool const isListed = shim.next() != nullptr;
    if (shim.manager_ != &manager_.manager_ || !shim.key_) return "is in the table without a manager or a key";
    if (!manager_.table_.reaches(shim)) return "is not found by its hash";
    if (shim.removal_ != Shim::Removal::none) return "is still being removed";
    if (shim.pageEntry_ && !shim.resource_) return "has a page but no resource";
    if (shim.pageEntry_ && !shim.pageEntry_->inUse()) return "has a page that is free";
    if (shim.lockCount_ < 0) return "has been unlocked more often than locked";
    if (isListed != (shim.isResourceAllocated() && !shim.isResourceLocked())) {
        return isListed ? "is listed for eviction but must not be evicted" : "may be evicted but is not listed";
    }
    bool const isHeld = shim.keyType_ == Shim::Retained && shim.resource_;
    if (shim.strongCount_ < (isHeld ? 2 : 1)) return "has lost a reference of its manager";
    if (shim.hot_ != manager_.accountant_.hotSet_.contains(const_cast<Shim*>(&shim)))
        return "differs from the set of hot ones";
    return nullptr;
}

char const* Audit::faultOfLinks(Shim const& shim) const {
    auto const mirrors = [](std::span<Shim::Link const> links, std::size_t place, Shim const& to, std::size_t back) {
        return place < links.size() && links[place].shim == &to && links[place].mirror == back;
    };
    for (std::size_t i = 0; i < shim.children().size(); ++i) {
        auto const [child, place] = shim.children()[i];
        if (!child) return "has lost a child, but lives on";
        if (!mirrors(child->parents(), place, shim, i)) return "is not a parent of its child";
        if (child->manager_ != &manager_.manager_) return "has a child that has been removed";
    }
    std::uint32_t cut = 0;
    for (std::size_t i = 0; i < shim.parents().size(); ++i) {
        auto const [parent, place] = shim.parents()[i];
        if (parent && !mirrors(parent->children(), place, shim, i)) return "is not a child of its parent";
        cut += parent ? 0 : 1;
    }
    return !shim.hasLinks() || cut == shim.relatives_->cutParents ? nullptr : "miscounts its parents";
}

char const* Audit::faultOfList() const {
    std::size_t listed = 0;
    urUtil::LinkedListNode<Shim> const* node = &manager_.lru_.sentinel();
    do {
        if (!node->next() || node->next()->previous() != node) return "the list of evictable resources is broken";
        node = node->next();
        ++listed;
    } while (node != &manager_.lru_.sentinel() && listed <= manager_.lru_.count());
    if (node != &manager_.lru_.sentinel() || listed != manager_.lru_.count() + 1)
        return "the list of evictable resources is miscounted";
    std::size_t evictable = 0;
    manager_.table_.forEach([&](Shim const& shim) { evictable += shim.next() ? 1 : 0; });
    return evictable == manager_.lru_.count() ? nullptr : "the list has shims that are not in the table";
}

char const* Audit::faultOfSums() const {
    std::uint64_t used = 0;
    std::uint64_t residential = 0;
    std::int64_t locked = manager_.accountant_.externalSize_;
    std::size_t hot = 0;
    manager_.table_.forEach([&](Shim const& shim) {
        std::uint32_t const size = shim.isResourceAllocated() ? shim.size_ : 0;
        used += size;
        residential += shim.residential_ ? size : 0;
        locked += shim.isResourceLocked() ? size : 0;
        hot += shim.hot_ ? 1 : 0;
    });
    auto const isSum = [](ResourceBytes const& bytes, std::uint64_t sum) {
        return bytes.total + static_cast<std::uint64_t>(bytes.resized) == sum;
    };
    if (!isSum(manager_.budget_.used_, used)) return "the memory used is not the sum of the resources";
    if (!isSum(manager_.budget_.residentialUsed_, residential)) return "the residential bytes are not their sum";
    if (locked != manager_.accountant_.lockedSize_) return "the locked bytes are not their sum";
    if (hot != manager_.accountant_.hotSet_.size()) return "the hot set has shims that are not in the table";
    if (manager_.isWatched_ != (manager_.accountant_.inInteraction_ || manager_.trace_))
        return "hits are watched for nobody, or not at all";
    return manager_.budget_.peak_ >= manager_.budget_.used_.total ? nullptr : "the peak is below the memory used";
}

std::size_t Audit::pagedOutCount() const {
    std::size_t count = 0;
    manager_.table_.forEach([&](Shim const& shim) { count += shim.pageEntry_ ? 1 : 0; });
    return count;
}

}  // namespace urKRCache
