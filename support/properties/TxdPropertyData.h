// The value shared by transacted properties.
#pragma once

#include "foundation/nxTXN/ImmutableReference.h"
#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/Serializer.h"
#include "plst/Item.h"
#include "support/properties/MemberList.h"
#include "support/properties/TxdPropertyTwin.h"

namespace nxSupport {

class TxdProperty;
class UnTxdPropertyData;

/// One value in a manager's history, its transacted members, and the link to its untransacted twin.
///
/// A record holds the list of members and the references to the value and to the twin: one pointer each.
class NX_API TxdPropertyData final : public nxTXN::RefCountedObject {
public:
    using ItemReference = ur::Reference<nxPLST::Item const>;
    enum class Propagate : bool { no, yes };

    explicit TxdPropertyData(nxTXN::Manager& manager) : RefCountedObject(manager) {}

    /// Null if no value was ever stored.
    [[nodiscard]] ItemReference value() const { return value_ ? value_->value() : nullptr; }
    /// Stores without notifying anyone, also on the untransacted side if requested.
    void storeValue(ItemReference value, Propagate toTwin);

    /// Stores the value of a new object, which is no change.
    void setFirstValue(ItemReference value);

    [[nodiscard]] MemberList<TxdProperty>& members() noexcept { return properties_; }
    void add(TxdProperty& property);
    /// Does nothing if it is not a member.
    void remove(TxdProperty& property);

    /// The twin; null if there is none.
    [[nodiscard]] UnTxdPropertyData* untxdTwin() const noexcept { return twin_ ? twin_->untxdData() : nullptr; }
    [[nodiscard]] bool isLinkedBy(TxdPropertyTwin const& twin) const noexcept { return twin_ == &twin; }
    /// Links both, so that each stores the other's values from now on. Ends any other link of `untxdData`.
    void setTwin(UnTxdPropertyData& untxdData);

protected:
    void onTransact(nxTXN::Serializer& serializer) override;
    void onTxnModified() override;
    void onTxnDestroyed() override;
    void onTxnExtant() override;
    /// That of the first member.
    [[nodiscard]] urString::CString onTxnName() const override;

private:
    static void onRestore(nxTXN::Object* object, nxTXN::Restorer& restorer);
    void mirrorRestored();
    enum class Members : bool { all, ofOtherManagers };
    void moveMembersToSuccessor(Members which, ItemReference value, ur::Reference<TxdPropertyTwin> const& twin);

    MemberList<TxdProperty> properties_;
    ur::Reference<nxTXN::ImmutableReference<nxPLST::Item const>> value_;
    ur::Reference<TxdPropertyTwin> twin_;
    ItemReference formerValue_;                  ///< the members' value before a restore, during it
    ur::Reference<TxdPropertyTwin> formerTwin_;  ///< the link before a restore, during it
};

}  // namespace nxSupport
