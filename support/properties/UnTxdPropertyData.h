// The value that untransacted properties share.
#pragma once

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "plst/Item.h"
#include "support/properties/MemberList.h"
#include "support/properties/TxdPropertyData.h"

namespace nxSupport {

class UnTxdProperty;

/// One value in plain memory, its members, and the transacted twin that it stores each value in as well.
class NX_API UnTxdPropertyData final : public ur::ReferenceCount {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;
    using Propagate = TxdPropertyData::Propagate;

    [[nodiscard]] ItemReference const& value() const noexcept { return value_; }
    /// Stores without telling anyone, on the transacted side as well if asked to.
    void storeValue(ItemReference value, Propagate toTwin);

    [[nodiscard]] MemberList<UnTxdProperty>& members() noexcept { return properties_; }
    void add(UnTxdProperty& property);
    /// Nothing when it is no member.
    void remove(UnTxdProperty& property) noexcept;

    /// The transacted twin; null when there is none, and as soon as undo has put the other side back to a state without
    /// the link.
    [[nodiscard]] TxdPropertyData* txdData() const noexcept {
        return link_ && link_->txdData()->isLinkedBy(*link_) ? link_->txdData() : nullptr;
    }

private:
    friend class TxdPropertyTwin;

    ~UnTxdPropertyData() override;

    MemberList<UnTxdProperty> properties_;
    ItemReference value_;
    TxdPropertyTwin* link_ = nullptr;  ///< which then leads here
};

}  // namespace nxSupport
