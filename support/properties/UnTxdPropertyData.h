// The value shared by untransacted properties.
#pragma once

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "plst/Item.h"
#include "support/properties/MemberList.h"
#include "support/properties/TxdPropertyData.h"

namespace nxSupport {

class UnTxdProperty;

/// One value in plain memory, its members, and the transacted twin in which it also stores each value.
class NX_API UnTxdPropertyData final : public ur::ReferenceCount {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;
    using Propagate = TxdPropertyData::Propagate;

    [[nodiscard]] ItemReference const& value() const noexcept { return value_; }
    /// Stores without notifying anyone, also on the transacted side if requested.
    void storeValue(ItemReference value, Propagate toTwin);

    [[nodiscard]] MemberList<UnTxdProperty>& members() noexcept { return properties_; }
    void add(UnTxdProperty& property);
    /// Does nothing if it is not a member.
    void remove(UnTxdProperty& property) noexcept;

    /// The transacted twin. Null if there is none, or if undo has restored a state without the link.
    [[nodiscard]] TxdPropertyData* txdData() const noexcept {
        return link_ && link_->txdData()->isLinkedBy(*link_) ? link_->txdData() : nullptr;
    }

private:
    friend class TxdPropertyTwin;

    ~UnTxdPropertyData() override;

    MemberList<UnTxdProperty> properties_;
    ItemReference value_;
    TxdPropertyTwin* link_ = nullptr;  ///< a link whose `untxdData` is this object
};

}  // namespace nxSupport
