// A property that undo and redo restore.
#pragma once

#include <utility>

#include "foundation/nxTXN/RefCountedObject.h"
#include "support/properties/Property.h"
#include "support/properties/TxdPropertyData.h"

namespace nxSupport {

/// A property whose value and joined set are part of its manager's history.
///
/// Owned by the manager, held by reference. If the manager is destroyed first, the property has no value; but a
/// property that shares the value of another manager keeps it when that manager is destroyed. A property that is not
/// part of the present state (`isTxnExtant`) is not notified, cannot join, and its clones do not share its value.
class NX_API TxdProperty final : public Property, public nxTXN::RefCountedObject {
public:
    TxdProperty(nxTXN::Manager& manager, urString::CString const& name);
    TxdProperty(nxTXN::Manager& manager, urString::CString const& name, ItemReference value);
    /// Creates a member of those that share `data`.
    TxdProperty(nxTXN::Manager& manager, urString::CString const& name, ur::Reference<TxdPropertyData> data);

    [[nodiscard]] bool isTransacted() const override { return true; }
    bool setValue(ItemReference value, PropertyModType type) override { return modify(std::move(value), type); }
    bool setValue(ItemReference value) override { return modify(std::move(value)); }
    [[nodiscard]] ItemReference value() const override { return data_ ? data_->value() : nullptr; }
    void ref() const noexcept override { RefCountedObject::ref(); }
    void unref() const noexcept override { RefCountedObject::unref(); }
    [[nodiscard]] TxnModifiedSignal* txnModifiedSignal() override { return &txnModified_; }

    /// The shared value. It exists if this property does; null only if the manager was destroyed.
    [[nodiscard]] ur::Reference<TxdPropertyData> const& data() const noexcept { return data_; }
    /// Whether it belongs to the data that owns `members`.
    [[nodiscard]] bool isIn(MemberList<TxdProperty> const& members) const noexcept {
        return data_ && &data_->members() == &members;
    }
    /// Records the state that `attachData` will change, and allocates the memory that it needs.
    void prepareAttaching(TxdPropertyData& data);
    /// Moves this property to `data`, and notifies its own listeners of all three stages.
    void attachData(ur::Reference<TxdPropertyData> const& data);

protected:
    ~TxdProperty() override;

    void onTransact(nxTXN::Serializer& serializer) override;
    void onTxnModified() override;
    void onTxnDestroyed() override;
    void onTxnExtant() override;
    [[nodiscard]] urString::CString onTxnName() const override { return name(); }

private:
    friend class TxdPropertyData;
    template <class Member>
    friend class MemberList;

    static nxTXN::FieldHandlers const dataHandlers;

    void rejoinList();
    void moveTo(ur::Reference<TxdPropertyData> const& data);

    ur::Reference<MemberEntry<TxdProperty>> const entry_ = ur::make<MemberEntry<TxdProperty>>(*this);
    ur::Reference<TxdPropertyData> data_;
    TxnModifiedSignal txnModified_;
};

}  // namespace nxSupport
