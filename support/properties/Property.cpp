// Names, validation and the order of notifications.
#include "support/properties/Property.h"

#include "support/properties/impl/JoinedPropertyIterator.h"

namespace nxSupport {

using impl::JoinedData;
using impl::JoinedPropertyIterator;
using Start = JoinedPropertyIterator::Start;

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
    tell(members, type);
}

bool Property::validate(ItemReference& candidate) {
    JoinedPropertyIterator members(*this, Start::include);
    return validate(members, candidate);
}

// Leaves the walk on the member whose validators ran, or at its end.
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

// A listener may have moved this property to another joined set, or given its set a second side: then all that is told.
void Property::tell(JoinedPropertyIterator& members, PropertyModType type) {
    if (!members.isCurrent()) return broadcast(type);
    members.forEach(Start::skip, [type](Property& member) { member.send(type); });
}

// Members whom validators let join are told of the change as well.
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
        tell(members, type);
    });
}

bool Property::modify(ItemReference value) {
    return changeValidated(value, [&](JoinedPropertyIterator& members) {
        tell(members, ModifyStart);
        store(std::move(value));
        tell(members, ModifyPerform);
        tell(members, ModifyEnd);
    });
}

void Property::store(ItemReference value) {
    if (TxdProperty const* const transacted = JoinedData::asTxd(*this)) {
        if (transacted->data()) transacted->data()->storeValue(std::move(value), TxdPropertyData::Propagate::yes);
    } else if (UnTxdProperty const* const untransacted = JoinedData::asUnTxd(*this)) {
        untransacted->data()->storeValue(std::move(value), UnTxdPropertyData::Propagate::yes);
    }
}

}  // namespace nxSupport
