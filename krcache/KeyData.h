// The description of a resource: what it is called and how it is built.
#pragma once

#include <cstddef>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/urRTB/Signal.h"
#include "krcache/KeyVisitor.h"
#include "krcache/Resource.h"

namespace urKRCache {

class ManagerImpl;

/// Names one resource and knows how to build it. Modules derive their own keys.
///
/// The manager keeps the first of several equal keys and asks that one. What compares and hashes must not change
/// while the key is in use. Every hook may use the cache, also for the key's own shim: a resource that is being
/// built or paged is then absent. An exception from a hook reaches the caller of the cache and leaves the cache
/// whole; a hook must not destroy the manager. The same thread as its manager.
class NX_API KeyData : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    /// Emitted each time the resource has been cleared, after `onResourceCleared`.
    urRTB::Signal<> resourceClearedSignal;

    ~KeyData() override;

    /// Whether `getPredeterminedSize` tells how large the resource will be, so that room can be made first.
    [[nodiscard]] virtual bool hasPredeterminedSize() const;
    /// In bytes. Asked once, when the shim is made.
    [[nodiscard]] virtual unsigned getPredeterminedSize() const;
    /// Whether the resource's bytes show up in the resident size of the process.
    [[nodiscard]] virtual bool isResidential() const;

    /// Negative, 0 or positive. Classes come in the platform's order of type identities; within one class
    /// `onCompare` decides.
    [[nodiscard]] int compare(KeyData const* other) const;
    /// Equal for keys that compare equal. Computed once, unless it is 0.
    [[nodiscard]] unsigned hash() const {
        if (memo_.hash == 0) memo_.hash = onHash();
        return memo_.hash;
    }

protected:
    KeyData() noexcept;

    /// A hash of the dynamic class, for `onHash` to start from.
    [[nodiscard]] unsigned getTypeHash() const;

    /// Shows the visitor the shims of all sub-keys: removing one of them removes this key as well.
    virtual void onVisitSubKeys(KeyVisitor& visitor) const;
    /// The key has been removed, after all that was built from its resource.
    virtual void onKeyRemoved();
    /// The resource has been dropped; paging it out does not count.
    virtual void onResourceCleared();
    /// As `compare`. Requires of the caller: `other` has this object's dynamic class.
    [[nodiscard]] virtual int onCompare(KeyData const* other) const = 0;
    /// As `hash`.
    [[nodiscard]] virtual unsigned onHash() const = 0;
    /// Null when there is nothing to build now; the next access asks again.
    [[nodiscard]] virtual ur::Reference<Resource> onCreateResource() const = 0;

private:
    /// The resource is in place and counted: after building, and each time after it has been read back.
    virtual void onInitializeResource(ur::Reference<Resource> resource) const;

    friend class ManagerImpl;
    friend class Removals;

    [[nodiscard]] ur::Reference<Resource> createResource() const { return onCreateResource(); }
    void initializeResource(ur::Reference<Resource> resource) const { onInitializeResource(std::move(resource)); }
    void keyRemoved() { onKeyRemoved(); }
    void resourceCleared() {
        onResourceCleared();
        resourceClearedSignal.emit();
    }
    void visitSubKeys(KeyVisitor& visitor) const { onVisitSubKeys(visitor); }

    /// What the cache remembers of this very object. A copy starts without, since it may yet be changed.
    struct Memo {
        Memo() noexcept = default;
        Memo(Memo const& /*other*/) noexcept {}
        Memo& operator=(Memo const& other) noexcept {
            if (this != &other) *this = Memo();
            return *this;
        }
        Memo& operator=(Memo&&) noexcept = default;
        ~Memo() = default;

        Shim* shim = nullptr;  ///< that was made for it: found again without the table
        ManagerImpl const* owner = nullptr;
        unsigned hash = 0;
    };

    mutable Memo memo_;
};

}  // namespace urKRCache
