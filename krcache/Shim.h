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

/// Through which clients reach the resource of a key: they hold it by `ur::Reference` and hand it to the manager.
///
/// Made and owned by its manager, which also holds one reference until the key is removed. After that a shim has
/// no manager, no key and no resource, and only waits for its last reference. Shims of keys and of their sub-keys
/// know each other: the children are what a resource is built from, the parents what is built from it.
/// The same thread as its manager.
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
    /// May remove the key from the manager, and with it all that is built from it.
    void unref() const noexcept {
        --strongCount_;
        if (strongCount_ == weakCount_ && manager_) [[unlikely]]
            lastUnref();
        if (strongCount_ == 0) delete this;
    }
    /// One of the references is held on behalf of a dependent. Nothing for a retained shim, like its counterpart.
    void weakRef() const noexcept { weakCount_ += keyType_ == WeakCounted ? 1 : 0; }
    void weakUnref(int count) const noexcept { weakCount_ -= keyType_ == WeakCounted ? count : 0; }

    /// The resource is in memory.
    [[nodiscard]] bool isResourceAllocated() const noexcept { return resource_ && !pageEntry_; }
    [[nodiscard]] bool isResourceLocked() const noexcept { return lockCount_ > 0; }
    /// The resource is in the page file.
    [[nodiscard]] bool isResourceSerialized() const noexcept { return pageEntry_ != nullptr; }
    /// Null once the key has been removed.
    [[nodiscard]] ur::Reference<KeyData> keyData() const noexcept { return key_; }
    [[nodiscard]] KeyType keyType() const noexcept { return keyType_; }
    /// Null once the key has been removed.
    [[nodiscard]] Manager* manager() const noexcept { return manager_; }

    static void* operator new(std::size_t /*bytes*/) { return ur::allocateNode(nodeSize); }
    static void operator delete(void* shim) noexcept { ur::deallocateNode(shim, nodeSize); }

private:
    friend class Accountant;
    friend struct CacheProbe;  // for the tests alone
    friend class KeyTable;
    friend class Audit;
    friend class ManagerImpl;
    friend class Pager;
    friend class Removals;
    friend class Reports;

    /// Whole cache lines, so that what an access needs, the first one, is not spread over two.
    static constexpr std::size_t nodeSize = 128;

    /// A relative, and the place of the link back in the relative's own list. Null where it has been cut.
    struct Link {
        Shim* shim;
        std::uint32_t mirror;
    };
    using Links = std::vector<Link, ur::NodeAllocator<Link>>;
    /// Most shims have none: then this costs one pointer.
    struct Relatives {
        static void* operator new(std::size_t bytes) { return ur::allocateNode(bytes); }
        static void operator delete(void* relatives) noexcept { ur::deallocateNode(relatives, sizeof(Relatives)); }

        Links children;
        Links parents;
        std::uint32_t cutParents = 0;      ///< links among the parents that have been cut
        std::uint32_t visited = 0;         ///< how many of the former relatives the removal has come to
        ur::Reference<Resource> resource;  ///< kept until the dependents are gone, whose resources hold it
    };
    /// How far the removal of a shim has come. From `dependents` on its links are cut: nobody's list names it any
    /// more, while its own lists still hold those that they led to.
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
    /// Cuts all links, and holds those that they led to.
    void cutLinks() noexcept;
    /// The next former parent; null after the last.
    [[nodiscard]] Shim* nextFormerParent() noexcept;
    /// The former parents, then the former children, one after the other, with the count that cutting took.
    [[nodiscard]] Shim* takeFormerRelative() noexcept;
    void forgetParent(std::uint32_t place) noexcept;
    void compactParents() noexcept;

    // What looking up and accessing need fills one cache line, together with the links of the list.
    ur::Reference<KeyData> key_;
    ur::Reference<Resource> resource_;
    PageFileEntry* pageEntry_ = nullptr;  ///< where the payload is while it is not in memory
    mutable std::int32_t strongCount_ = 0;
    mutable std::int32_t weakCount_ = 0;
    std::int32_t lockCount_ = 0;
    bool hot_ = false;       ///< accessed during the current interaction
    bool building_ = false;  ///< being built or read back: accesses from inside find nothing
    bool paging_ = false;    ///< a stream is open on the chunk
    Removal removal_ = Removal::none;
    Manager* manager_;
    std::uint32_t size_;  ///< in bytes: expected at first, then as measured last
    KeyType keyType_;
    bool residential_;
    bool serializable_ = false;
    std::uint32_t hash_ = 0;       ///< by which the manager's table finds it again
    std::uint32_t serial_ = 0;     ///< tells shims apart in dumps and traces
    ClassUsage* usage_ = nullptr;  ///< what the resources of this class of keys take
    std::unique_ptr<Relatives> relatives_;
    Shim* below_ = nullptr;  ///< whose removal goes on after that of this one
};

}  // namespace urKRCache
