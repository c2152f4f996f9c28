// The cache's entry for one key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"
#include "foundation/urUtil/LinkedListNode.h"
#include "krcache/KeyData.h"
#include "krcache/Resource.h"

namespace urKRCache {

class Manager;
class PageFileEntry;
struct ClassUsage;

/// A client's handle to the resource of a key: clients hold it by `ur::Reference` and pass it to the manager.
///
/// Created and owned by its manager, which also holds one reference until the key is removed. After that a shim has no
/// manager, no key and no resource, and exists until its last reference is gone. The shims of a key and of its sub-keys
/// are linked: a resource is built from those of its shim's children, and those of the parents are built from it. Same
/// thread as its manager.
class NX_API Shim : public urUtil::LinkedListNode<Shim> {
public:
    enum KeyType : int {
        Retained = 0,     ///< stays in the manager until it is removed
        WeakCounted = 1,  ///< removed when no more strong references are left than dependents
    };

    Shim(Shim const&) = delete;
    Shim& operator=(Shim const&) = delete;
    ~Shim() override;

    void ref() const noexcept { ++strongCount_; }
    /// Releases a reference. May remove the key from the manager, with everything built from it.
    void unref() const noexcept {
        --strongCount_;
        if (strongCount_ == weakCount_ && manager_) [[unlikely]]
            lastUnref();
        if (strongCount_ == 0) delete this;
    }
    /// Declares that a dependent holds one of the references; `weakUnref` undoes this. Does nothing for a retained
    /// shim.
    void weakRef() const noexcept { weakCount_ += keyType_ == WeakCounted ? 1 : 0; }
    void weakUnref(int count) const noexcept { weakCount_ -= keyType_ == WeakCounted ? count : 0; }

    /// Whether the resource is in memory.
    [[nodiscard]] bool isResourceAllocated() const noexcept { return resource_ && !pageEntry_; }
    [[nodiscard]] bool isResourceLocked() const noexcept { return lockCount_ > 0; }
    /// Whether the resource is in the page file.
    [[nodiscard]] bool isResourceSerialized() const noexcept { return pageEntry_ != nullptr; }
    /// Null after the key has been removed.
    [[nodiscard]] ur::Reference<KeyData> keyData() const noexcept { return key_; }
    [[nodiscard]] KeyType keyType() const noexcept { return keyType_; }
    /// Null after the key has been removed.
    [[nodiscard]] Manager* manager() const noexcept { return manager_; }

    static void* operator new(std::size_t /*bytes*/) { return ur::allocateNode(nodeSize); }
    static void operator delete(void* shim) noexcept { ur::deallocateNode(shim, nodeSize); }

private:
    friend class Accountant;
    friend struct CacheProbe;  // for the tests only
    friend class KeyTable;
    friend class Audit;
    friend class ManagerImpl;
    friend class Pager;
    friend class Removals;
    friend class Reports;

    /// Whole cache lines, so that the members needed by an access lie in the first line.
    static constexpr std::size_t nodeSize = 128;

    /// A linked shim, and the index of the opposite link in its list. Null if cut.
    struct Link {
        Shim* shim;
        std::uint32_t mirror;
    };
    using Links = std::vector<Link, ur::NodeAllocator<Link>>;
    /// Most shims have no links; this way they pay for one pointer only.
    struct Relatives {
        static void* operator new(std::size_t bytes) { return ur::allocateNode(bytes); }
        static void operator delete(void* relatives) noexcept { ur::deallocateNode(relatives, sizeof(Relatives)); }

        Links children;
        Links parents;
        std::uint32_t cutParents = 0;      ///< links among the parents that have been cut
        std::uint32_t visited = 0;         ///< the number of former relatives that the removal has visited
        ur::Reference<Resource> resource;  ///< kept until the dependents, whose resources may hold it, are gone
    };
    /// The state of a shim's removal. From `dependents` on its links are cut: no other shim's list contains it, but its
    /// own lists still hold references to the former relatives.
    enum class Removal : std::uint8_t { none, clear, dependents, release, finish, done };

    Shim(Manager& manager, ur::Reference<KeyData> key, KeyType type);

    void lastUnref() const noexcept;
    Relatives& relatives();
    [[nodiscard]] std::span<Link const> children() const noexcept;
    [[nodiscard]] std::span<Link const> parents() const noexcept;
    [[nodiscard]] bool hasParents() const noexcept {
        return hasLinks() && relatives_->cutParents < relatives_->parents.size();
    }
    [[nodiscard]] bool hasLinks() const noexcept { return relatives_ && removal_ < Removal::dependents; }
    void addChild(Shim& child);
    /// Cuts all links and takes a reference to each shim that they led to.
    void cutLinks() noexcept;
    /// The next former parent; null after the last one.
    [[nodiscard]] Shim* nextFormerParent() noexcept;
    /// The next of the former parents and then children, with the reference that `cutLinks` took. Null after the last
    /// one.
    [[nodiscard]] Shim* takeFormerRelative() noexcept;
    void forgetParent(std::uint32_t place) noexcept;
    void compactParents() noexcept;

    // The members that look-ups and accesses need fill one cache line, together with the links of the list.
    ur::Reference<KeyData> key_;
    ur::Reference<Resource> resource_;
    PageFileEntry* pageEntry_ = nullptr;  ///< the payload's chunk while it is paged out
    mutable std::int32_t strongCount_ = 0;
    mutable std::int32_t weakCount_ = 0;
    std::int32_t lockCount_ = 0;
    bool hot_ = false;       ///< accessed during the current interaction
    bool building_ = false;  ///< being built or read back: nested accesses return null
    bool paging_ = false;    ///< a stream on the chunk is open
    Removal removal_ = Removal::none;
    Manager* manager_;
    std::uint32_t size_;  ///< in bytes: first the expected size, then the last measured one
    KeyType keyType_;
    bool residential_;
    bool serializable_ = false;
    std::uint32_t hash_ = 0;       ///< its hash in the manager's table
    std::uint32_t serial_ = 0;     ///< identifies the shim in dumps and traces
    ClassUsage* usage_ = nullptr;  ///< the totals of this class of keys
    std::unique_ptr<Relatives> relatives_;
    Shim* nextOnStack_ = nullptr;  ///< the next lower shim on the stack of removals
};

}  // namespace urKRCache
