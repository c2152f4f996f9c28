// The base of transaction objects that their manager owns.
#pragma once

#include <cstdint>

#include "foundation/nxTXN/Object.h"

namespace nxTXN {

/// An object made with `new`, shared by `ur::Reference` and deleted by its manager.
///
/// When the last reference goes, the object ceases to exist, but stays in memory while the history may restore it. It
/// is deleted when neither references nor records need it, at the latest with its manager, which also takes apart
/// cycles; records of other managers then forget the objects. A reference that outlives the manager holds an object
/// whose recorded fields are empty. An object that never had a reference is deleted with its manager, or with the
/// undone transaction that created it.
class NX_API RefCountedObject : public Object {
public:
    explicit RefCountedObject(Manager& manager) : Object(manager, Counting::references) {}

protected:
    /// For values that recorded fields of other objects refer to: creating one is not a change in itself.
    enum class Role : bool { value };
    RefCountedObject(Manager& manager, Role /*role*/) : Object(manager, Counting::referencesOfValue) {}
    ~RefCountedObject() override;

    /// Frees the object, as the last step. Classes with their own allocation override it.
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
