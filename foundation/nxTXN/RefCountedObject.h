// The base of transaction objects that their manager owns.
#pragma once

#include <cstdint>

#include "foundation/nxTXN/Object.h"

namespace nxTXN {

/// An object made with `new`, shared by `ur::Reference` and deleted by its manager.
///
/// When the last reference goes, the object ceases to exist but stays in memory for as long as the history may
/// bring it back. It is deleted once neither references nor records need it, and with the manager at the latest:
/// objects that refer to each other are taken apart then, and records of other managers forget them. A reference that
/// outlives the manager holds an object whose recorded fields are empty. An object that never had a reference goes with
/// its manager, or with the undone transaction that made it.
class NX_API RefCountedObject : public Object {
public:
    explicit RefCountedObject(Manager& manager) : Object(manager, Counting::references) {}

protected:
    /// For values that recorded fields of other objects refer to: making one is no change by itself.
    enum class Role : bool { value };
    RefCountedObject(Manager& manager, Role /*role*/) : Object(manager, Counting::referencesOfValue) {}
    ~RefCountedObject() override;

    /// Frees the object. Called last of all; classes with an allocation of their own override it.
    virtual void txnDelete();

    void onTxnGetSize(ObjectSize& size) const override;

public:
    virtual void ref() const noexcept { ++references_; }
    virtual void unref() const noexcept {
        if (--references_ == 0) lastReferenceGone();
    }
    [[nodiscard]] std::uint32_t referenceCount() const noexcept { return references_; }

private:
    friend class impl::History;
    friend class impl::Replay;
    friend class impl::Lifetimes;

    void lastReferenceGone() const noexcept;

    mutable std::uint32_t references_ = 0;
};

}  // namespace nxTXN
