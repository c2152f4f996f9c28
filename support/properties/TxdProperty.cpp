// Creates, moves and restores transacted properties.
#include "support/properties/TxdProperty.h"

#include <utility>

#include "foundation/nxTXN/fields.h"

namespace nxSupport {

TxdProperty::TxdProperty(nxTXN::Manager& manager, urString::CString const& name)
    : TxdProperty(manager, name, ur::make<TxdPropertyData>(manager)) {}

TxdProperty::TxdProperty(nxTXN::Manager& manager, urString::CString const& name, ItemReference value)
    : TxdProperty(manager, name) {
    data_->setFirstValue(std::move(value));
}

TxdProperty::TxdProperty(nxTXN::Manager& manager, urString::CString const& name, ur::Reference<TxdPropertyData> data)
    : Property(name), RefCountedObject(manager), data_(std::move(data)) {
    kind_ = Kind::transacted;
    data_->add(*this);
}

TxdProperty::~TxdProperty() { entry_->detach(); }

// Everything that may run out of memory comes before the change: a property is always in its data's list.
void TxdProperty::prepareAttaching(TxdPropertyData& data) {
    if (!isTxnExtant()) return;
    transact();
    data_->transact();
    data.transact();
    data.members().makeRoom(1);
}

void TxdProperty::attachData(ur::Reference<TxdPropertyData> const& data) {
    if (!isTxnExtant()) return;
    transact();
    send(ModifyStart);
    if (!isTxnExtant()) return;  // a listener has undone the property's creation or destroyed the manager
    prepareAttaching(*data);
    moveTo(data);
    send(ModifyPerform);
    send(ModifyEnd);
}

// The handlers of `data_`. They mark the data that the property leaves, because undo may not restore it itself.
nxTXN::FieldHandlers const TxdProperty::dataHandlers = {
    [](nxTXN::Writer& writer, void const* field) { write(writer, static_cast<TxdProperty const*>(field)->data_); },
    [](nxTXN::Reader& reader, void* field) {
        auto& property = *static_cast<TxdProperty*>(field);
        if (property.data_) property.data_->members().markUnclean();
        read(reader, property.data_);
    },
    [](nxTXN::Clear& cleared, void* field) { clear(cleared, static_cast<TxdProperty*>(field)->data_); }};

void TxdProperty::onTransact(nxTXN::Serializer& serializer) {
    serializer.beginObject(this, nullptr);
    RefCountedObject::onTransact(serializer);
    serializer.field(this, &dataHandlers);
    serializer.endObject(this);
}

void TxdProperty::onTxnModified() {
    RefCountedObject::onTxnModified();
    rejoinList();
    txnModified_.emit(ur::Reference<Property>(this));
}

void TxdProperty::onTxnDestroyed() {
    RefCountedObject::onTxnDestroyed();
    if (data_) data_->remove(*this);
}

void TxdProperty::onTxnExtant() {
    RefCountedObject::onTxnExtant();
    if (isTxnExtant()) {
        rejoinList();
    } else if (data_) {
        data_->members().markStale();
    }
}

// If the property left or joined a list unrecorded, the list may not be part of the step that restored or moved the
// property. The data may have been undone by another manager, or destroyed with it: then use a copy.
void TxdProperty::rejoinList() {
    if (!data_ || !data_->isTxnExtant()) {
        auto const copy = ur::make<TxdPropertyData>(*txnManager());
        copy->setFirstValue(value());
        moveTo(copy);
    } else if (!data_->members().contains(*this)) {
        data_->members().add(*this);
    }
}

void TxdProperty::moveTo(ur::Reference<TxdPropertyData> const& data) {
    data->members().makeRoom(1);
    if (data_) data_->members().remove(*this);
    data_ = data;
    data_->members().add(*this);
}

}  // namespace nxSupport
