// Making properties, and making them share.
#include <utility>

#include "foundation/nxTXN/Manager.h"
#include "support/properties/impl/JoinedData.h"

namespace nxSupport {
namespace {

using impl::JoinedData;
using Propagate = TxdPropertyData::Propagate;

/// The members of one side, held so that listeners may drop them.
template <class Member, class Data>
ur::vector<ur::Reference<Member>> snapshot(Data* data) {
    ur::vector<ur::Reference<Member>> members;
    if (!data) return members;
    members.reserve(data->members().size());
    data->members().forEach([&](Member& member) {
        if (member.data() == data) members.emplace_back(&member);
    });
    return members;
}

}  // namespace

ur::Reference<Property> Property::createTxd(nxTXN::Manager& manager, urString::CString const& name) {
    return ur::make<TxdProperty>(manager, name);
}

ur::Reference<Property> Property::createTxd(nxTXN::Manager& manager, urString::CString const& name,
                                            ItemReference value) {
    return ur::make<TxdProperty>(manager, name, std::move(value));
}

ur::Reference<Property> Property::createUnTxd(urString::CString const& name) { return ur::make<UnTxdProperty>(name); }

ur::Reference<Property> Property::createUnTxd(urString::CString const& name, ItemReference value) {
    return ur::make<UnTxdProperty>(name, std::move(value));
}

ur::Reference<Property> Property::cloneTxd(nxTXN::Manager& manager, urString::CString const& name) const {
    JoinedData const shared(*this);
    if (shared.txd && shared.txd->isTxnExtant()) {
        return ur::make<TxdProperty>(manager, name, ur::Reference<TxdPropertyData>(shared.txd));
    }
    if (!shared.untxd) return shared.txd ? createTxd(manager, name, value()) : nullptr;
    auto const data = ur::make<TxdPropertyData>(manager);
    data->storeValue(value(), Propagate::no);
    auto clone = ur::make<TxdProperty>(manager, name, data);
    data->setTwin(*shared.untxd);
    return clone;
}

ur::Reference<Property> Property::cloneUnTxd(urString::CString const& name) const {
    JoinedData const shared(*this);
    if (shared.untxd) return ur::make<UnTxdProperty>(name, ur::Reference<UnTxdPropertyData>(shared.untxd));
    if (!shared.txd) return nullptr;
    auto const data = ur::make<UnTxdPropertyData>();
    data->storeValue(value(), Propagate::no);
    auto clone = ur::make<UnTxdProperty>(name, data);
    shared.txd->setTwin(*data);
    return clone;
}

void Property::join(ur::Reference<Property const> other) {
    if (!other) return;
    JoinedData const mine(*this);
    auto const transacted = snapshot<TxdProperty>(mine.txd);
    auto const untransacted = snapshot<UnTxdProperty>(mine.untxd);

    JoinedData const theirs(*other);
    ur::Reference<TxdPropertyData> txd(theirs.txd);
    ur::Reference<UnTxdPropertyData> untxd(theirs.untxd);
    if (txd ? !txd->isTxnExtant() : !untxd) return;
    if (txd && !untxd && !untransacted.empty()) {
        untxd = ur::make<UnTxdPropertyData>();
        untxd->storeValue(other->value(), Propagate::no);
        txd->setTwin(*untxd);
    }
    if (untxd && !txd && !transacted.empty()) {
        txd = ur::make<TxdPropertyData>(*transacted.front()->data()->txnManager());
        txd->storeValue(other->value(), Propagate::no);
        txd->setTwin(*untxd);
    }
    // All that there may be no memory for, so that not only a part of them moves.
    for (auto const& property : transacted) property->prepareAttaching(*txd);
    if (txd) txd->members().makeRoom(transacted.size());
    if (untxd) untxd->members().makeRoom(untransacted.size());
    for (auto const& property : transacted) property->attachData(txd);
    for (auto const& property : untransacted) property->attachData(untxd);
}

}  // namespace nxSupport
