// Creates, moves and destroys untransacted properties.
#include "support/properties/UnTxdProperty.h"

#include <utility>

namespace nxSupport {

UnTxdProperty::UnTxdProperty(urString::CString const& name) : UnTxdProperty(name, ur::make<UnTxdPropertyData>()) {}

UnTxdProperty::UnTxdProperty(urString::CString const& name, ItemReference value) : UnTxdProperty(name) {
    data_->storeValue(std::move(value), UnTxdPropertyData::Propagate::yes);
}

UnTxdProperty::UnTxdProperty(urString::CString const& name, ur::Reference<UnTxdPropertyData> data)
    : Property(name), data_(std::move(data)) {
    kind_ = Kind::untransacted;
    data_->add(*this);
}

UnTxdProperty::~UnTxdProperty() {
    data_->remove(*this);
    entry_->detach();
}

void UnTxdProperty::attachData(ur::Reference<UnTxdPropertyData> const& data) {
    send(ModifyStart);
    data->members().makeRoom(1);
    data_->remove(*this);
    data_ = data;
    data_->add(*this);
    send(ModifyPerform);
    send(ModifyEnd);
}

}  // namespace nxSupport
