// Base class of keys. A key identifies a resource and builds it.
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

/// Identifies one resource and builds it. Modules derive their own keys.
///
/// Of several equal keys the manager keeps and calls the first one only. State that `onCompare` or `onHash` reads must
/// not change while the key is in use. Every hook may use the cache, even for the key's own shim; while a resource is
/// being built or paged, an access to it returns null. An exception from a hook reaches the caller of the cache and
/// leaves the cache intact. A hook must not destroy the manager. Same thread as its manager.
class NX_API KeyData : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    /// Emitted each time the resource has been cleared, after `onResourceCleared`.
    urRTB::Signal<> resourceClearedSignal;

    ~KeyData() override;

    /// Whether `getPredeterminedSize` returns the resource's size, so that room can be made before building it.
    [[nodiscard]] virtual bool hasPredeterminedSize() const;
    /// In bytes. Called once, when the shim is created.
    [[nodiscard]] virtual unsigned getPredeterminedSize() const;
    /// Whether the resource's bytes are part of the resident size of the process.
    [[nodiscard]] virtual bool isResidential() const;

    /// Negative, 0 or positive. Keys of different classes follow the platform's order of type identities; keys of one
    /// class follow `onCompare`.
    [[nodiscard]] int compare(KeyData const* other) const;
    /// Keys that compare equal have equal hashes. The hash is computed once, or each time if it is 0.
    [[nodiscard]] unsigned hash() const {
        if (memo_.hash == 0) memo_.hash = onHash();
        return memo_.hash;
    }

protected:
    KeyData() noexcept;

    /// A hash of the dynamic class; `onHash` can start from it.
    [[nodiscard]] unsigned getTypeHash() const;

    /// Passes the shims of all sub-keys to the visitor. Removing a sub-key also removes this key.
    virtual void onVisitSubKeys(KeyVisitor& visitor) const;
    /// Called after the key and everything built from its resource were removed.
    virtual void onKeyRemoved();
    /// Called after the resource was dropped, but not after it was paged out.
    virtual void onResourceCleared();
    /// As `compare`. The caller passes only an `other` of this object's dynamic class.
    [[nodiscard]] virtual int onCompare(KeyData const* other) const = 0;
    /// As `hash`.
    [[nodiscard]] virtual unsigned onHash() const = 0;
    /// Builds the resource. Null if there is nothing to build now; the next access calls it again.
    [[nodiscard]] virtual ur::Reference<Resource> onCreateResource() const = 0;

private:
    /// Called when the resource is in place and counted: after it was built, and each time it was read back.
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

    /// What the cache stores about this object. A copy starts with an empty memo, because the copy may still be
    /// changed.
    struct Memo {
        Memo() noexcept = default;
        Memo(Memo const& /*other*/) noexcept {}
        Memo& operator=(Memo const& other) noexcept {
            if (this != &other) *this = Memo();
            return *this;
        }
        Memo& operator=(Memo&&) noexcept = default;
        ~Memo() = default;

        Shim* shim = nullptr;  ///< the shim created for this object; saves looking in the table
        ManagerImpl const* owner = nullptr;
        unsigned hash = 0;
    };

    mutable Memo memo_;
};

}  // namespace urKRCache
