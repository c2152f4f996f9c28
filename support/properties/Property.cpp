// Names, validation, order of notifications, and joining.
#include "support/properties/Property.h"

#include <utility>

#include "foundation/nxTXN/Manager.h"
#include "support/properties/impl/JoinedPropertyIterator.h"
#include "support/properties/impl/PropertyHold.h"

namespace nxSupport {

using impl::JoinedData;
using impl::JoinedPropertyIterator;
using Propagate = TxdPropertyData::Propagate;
using Start = JoinedPropertyIterator::Start;

namespace {

/// Holds the members of one side, because listeners may drop them.
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

Property::~Property() = default;

urString::CString Property::basename() const {
    std::size_t const point = name_.rfind('.');
    return point == urString::CString::npos ? name_ : name_.substr(point + 1);
}

void Property::send(PropertyModType type) {
    if (!listened_) return;
    impl::PropertyHold const self(*this);
    modifySignal_.emit(self.reference(), type);
}

void Property::broadcast(PropertyModType type) {
    JoinedPropertyIterator members(*this, Start::skip);
    notifyMembers(members, type);
}

bool Property::validate(ItemReference& candidate) {
    JoinedPropertyIterator members(*this, Start::include);
    return validate(members, candidate);
}

// Leaves the iterator on the member whose validators ran, or at the end.
bool Property::validate(JoinedPropertyIterator& members, ItemReference& candidate) {
    for (; members.valid(); members.next()) {
        Property const& member = members.current();
        if (!member.validated_ || !member.validationSignal_.hasConnections()) continue;
        impl::PropertyHold const held(member);
        ItemReference const before(candidate.get());
        member.validationSignal_.emit(held.reference(), candidate);
        return candidate == before;
    }
    return true;
}

// If a listener has moved this property to another joined set, or has given its set a second side, walk the new set.
void Property::notifyMembers(JoinedPropertyIterator& members, PropertyModType type) {
    if (!members.isCurrent()) return broadcast(type);
    members.forEach(Start::skip, [type](Property& member) { member.send(type); });
}

// Members that joined during validation are notified of the change as well.
template <class Change>
bool Property::changeValidated(ItemReference& value, Change change) {
    JoinedPropertyIterator members(*this, Start::include);
    bool const unchanged = validate(members, value);
    if (members.valid()) {
        JoinedPropertyIterator renewed(*this, Start::include);
        change(renewed);
    } else {
        change(members);
    }
    return unchanged;
}

bool Property::modify(ItemReference value, PropertyModType type) {
    return changeValidated(value, [&](JoinedPropertyIterator& members) {
        if (type == ModifyAll) return void(setValue(std::move(value)));
        store(std::move(value));
        notifyMembers(members, type);
    });
}

bool Property::modify(ItemReference value) {
    return changeValidated(value, [&](JoinedPropertyIterator& members) {
        notifyMembers(members, ModifyStart);
        store(std::move(value));
        notifyMembers(members, ModifyPerform);
        notifyMembers(members, ModifyEnd);
    });
}

void Property::store(ItemReference value) {
    if (TxdProperty const* const transacted = JoinedData::asTxd(*this)) {
        if (transacted->data()) transacted->data()->storeValue(std::move(value), TxdPropertyData::Propagate::yes);
    } else if (UnTxdProperty const* const untransacted = JoinedData::asUnTxd(*this)) {
        untransacted->data()->storeValue(std::move(value), UnTxdPropertyData::Propagate::yes);
    }
}

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
    data->setFirstValue(value());
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
        txd->setFirstValue(other->value());
        txd->setTwin(*untxd);
    }
    // Allocate everything before moving anything, so that running out of memory does not move a part only.
    for (auto const& property : transacted) property->prepareAttaching(*txd);
    if (txd) txd->members().makeRoom(transacted.size());
    if (untxd) untxd->members().makeRoom(untransacted.size());
    for (auto const& property : transacted) property->attachData(txd);
    for (auto const& property : untransacted) property->attachData(untxd);
}

}  // namespace nxSupport
