// How transacted properties come, move and go.
#include "support/properties/TxdProperty.h"

#include <utility>

#include "foundation/nxTXN/fields.h"

namespace nxSupport {

TxdProperty::TxdProperty(nxTXN::Manager& manager, urString::CString const& name)
    : TxdProperty(manager, name, ur::make<TxdPropertyData>(manager)) {}

TxdProperty::TxdProperty(nxTXN::Manager& manager, urString::CString const& name, ItemReference value)
    : TxdProperty(manager, name) {
    data_->storeValue(std::move(value), TxdPropertyData::Propagate::yes);
}

TxdProperty::TxdProperty(nxTXN::Manager& manager, urString::CString const& name, ur::Reference<TxdPropertyData> data)
    : Property(name), RefCountedObject(manager), data_(std::move(data)) {
    kind_ = Kind::transacted;
    data_->add(*this);
}

TxdProperty::~TxdProperty() = default;

void TxdProperty::attachData(ur::Reference<TxdPropertyData> const& data) {
    if (!isTxnExtant()) return;
    transact();
    send(ModifyStart);
    data_->remove(*this);
    data_ = data;
    data_->add(*this);
    send(ModifyPerform);
    send(ModifyEnd);
}

void TxdProperty::onTransact(nxTXN::Serializer& serializer) {
    serializer.beginObject(this, nullptr);
    RefCountedObject::onTransact(serializer);
    serializer.field(data_);
    serializer.endObject(this);
}

void TxdProperty::onTxnModified() {
    RefCountedObject::onTxnModified();
    txnModified_.emit(ur::Reference<Property>(this));
}

void TxdProperty::onTxnDestroyed() {
    RefCountedObject::onTxnDestroyed();
    if (data_) data_->remove(*this);
}

}  // namespace nxSupport
