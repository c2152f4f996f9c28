// Stores, mirrors and restores a transacted value.
#include "support/properties/TxdPropertyData.h"

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <utility>

#include "foundation/nxTXN/fields.h"
#include "support/properties/TxdProperty.h"
#include "support/properties/UnTxdProperty.h"
#include "support/properties/impl/MemberWalk.h"

namespace nxTXN {

// The functions that record a list: a 32-bit count, then the pointers.
static void write(Writer& writer, nxSupport::MemberList<nxSupport::TxdProperty> const& members) {
    auto const count = static_cast<std::uint32_t>(members.size());
    writer.writeData(&count, sizeof count);
    members.forEach([&writer](Object const& member) { writer.writePtr(&member); });
}
static nxSupport::TxdProperty* readMember(Reader& reader) {
    return static_cast<nxSupport::TxdProperty*>(static_cast<Object*>(reader.readPtr()));
}
static bool readsAs(Reader& reader, nxSupport::MemberList<nxSupport::TxdProperty> const& members) {
    std::uint32_t count = 0;
    reader.readData(&count, sizeof count);
    std::size_t slot = 0;
    bool alike = true;
    while (count-- > 0) {
        nxSupport::TxdProperty const* const member = readMember(reader);
        if (member) alike = alike && members.at(slot++) == member;
    }
    return alike && slot == members.slotCount();
}
static void read(Reader& reader, nxSupport::MemberList<nxSupport::TxdProperty>& members) {
    Reader ahead = reader;
    if (readsAs(ahead, members)) {  // this path needs no memory, because a change of the value alone must not allocate
                                    // in the list
        reader = ahead;
        return;
    }
    std::uint32_t count = 0;
    reader.readData(&count, sizeof count);
    // `readMember` returns null if the member's manager was destroyed. Unrecorded members stay. Whether a member has
    // moved is known only after all fields are restored.
    members.assign(
        count, [&reader] { return readMember(reader); },
        [&members](nxSupport::TxdProperty const& member) { return member.isIn(members); });
}
static void clear(Clear& /*cleared*/, nxSupport::MemberList<nxSupport::TxdProperty>& members) { members.clear(); }

}  // namespace nxTXN

namespace nxSupport {

void TxdPropertyData::storeValue(ItemReference value, Propagate toTwin) {
    nxTXN::Manager* const manager = txnManager();
    if (!manager) return;
    transact();
    value_ = ur::make<nxTXN::ImmutableReference<nxPLST::Item const>>(*manager, value);
    if (toTwin == Propagate::no) return;
    if (UnTxdPropertyData* const twin = untxdTwin()) twin->storeValue(std::move(value), Propagate::no);
}

void TxdPropertyData::setFirstValue(ItemReference value) {
    nxTXN::Manager* const manager = txnManager();
    if (!manager) return;
    transactSilently();
    value_ = ur::make<nxTXN::ImmutableReference<nxPLST::Item const>>(*manager, std::move(value));
}

void TxdPropertyData::add(TxdProperty& property) {
    transactSilently();
    properties_.add(property);
}

void TxdPropertyData::remove(TxdProperty& property) {
    transactSilently();
    properties_.remove(property);
}

void TxdPropertyData::setTwin(UnTxdPropertyData& untxdData) {
    nxTXN::Manager* const manager = txnManager();
    if (!manager) return;
    transactSilently();
    twin_ = ur::make<TxdPropertyTwin>(*manager, *this, untxdData);
}

urString::CString TxdPropertyData::onTxnName() const {
    urString::CString name;
    properties_.forEach([&name](TxdProperty const& member) {
        if (name.empty()) name = member.name();
    });
    return name;
}

void TxdPropertyData::onTransact(nxTXN::Serializer& serializer) {
    serializer.beginObject(this, &onRestore);
    RefCountedObject::onTransact(serializer);
    serializer.field(properties_);
    serializer.field(value_);
    serializer.field(twin_);
    serializer.endObject(this);
}

void TxdPropertyData::onRestore(nxTXN::Object* object, nxTXN::Restorer& restorer) {
    auto& data = static_cast<TxdPropertyData&>(*object);
    data.formerValue_ = data.value();
    data.formerTwin_ = data.twin_;
    restorer.restore(object);
    if (data.untxdTwin() && data.value() != data.formerValue_) data.mirrorRestored();
}

// Even if listeners throw, both sides have the same value afterwards.
void TxdPropertyData::mirrorRestored() {
    impl::MemberWalk<UnTxdPropertyData> members(untxdTwin());
    std::exception_ptr failure;
    auto const notifyAll = [&](std::initializer_list<PropertyModType> types) {
        for (members.rewind(); members.valid(); members.next()) {
            ur::Reference<Property> const member(members.member());
            try {
                for (PropertyModType const type : types) {
                    if (member) member->send(type);
                }
            } catch (...) {
                if (!failure) failure = std::current_exception();
            }
        }
    };
    notifyAll({ModifyStart});
    members.data()->storeValue(value(), Propagate::no);
    notifyAll({ModifyPerform, ModifyEnd});
    if (failure) std::rethrow_exception(failure);
}

void TxdPropertyData::onTxnModified() {
    RefCountedObject::onTxnModified();
    formerValue_.reset();
    formerTwin_.reset();
    properties_.cleanUp([this](TxdProperty const& member, bool named) {
        return member.isIn(properties_) && (named || member.isTxnExtant());
    });
    for (impl::MemberWalk<TxdPropertyData> members(this); members.valid(); members.next()) {
        ur::Reference<TxdProperty> const member(members.member());
        if (member && member->isTxnExtant()) member->txnModified_.emit(member);
    }
}

void TxdPropertyData::onTxnDestroyed() {
    RefCountedObject::onTxnDestroyed();
    transactSilently();
    moveMembersToSuccessor(Members::ofOtherManagers, value(), twin_);
    if (twin_) twin_->sever();
    twin_.reset();
}

void TxdPropertyData::onTxnExtant() {
    RefCountedObject::onTxnExtant();
    if (!isTxnExtant()) moveMembersToSuccessor(Members::all, std::move(formerValue_), formerTwin_);
    formerTwin_.reset();
}

// Unrecorded members outlive the step that created this object, and members of other managers outlive its manager. They
// continue to share its value, and the link if that lasts.
void TxdPropertyData::moveMembersToSuccessor(Members which, ItemReference value,
                                             ur::Reference<TxdPropertyTwin> const& twin) {
    ur::vector<TxdProperty*> moved;
    properties_.forEach([&](TxdProperty& member) {
        if (!member.isIn(properties_) || !member.isTxnExtant()) return;
        if (which == Members::all || member.txnManager() != txnManager()) moved.push_back(&member);
    });
    if (moved.empty()) return;
    auto const successor = ur::make<TxdPropertyData>(*moved.front()->txnManager());
    successor->setFirstValue(std::move(value));
    for (TxdProperty* const member : moved) member->moveTo(successor);
    if (UnTxdPropertyData* const untransacted = twin ? twin->untxdData() : nullptr) successor->setTwin(*untransacted);
}

}  // namespace nxSupport
