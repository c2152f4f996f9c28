// Storing an untransacted value, and leaving the twin.
#include "support/properties/UnTxdPropertyData.h"

#include <utility>

#include "support/properties/UnTxdProperty.h"

namespace nxSupport {

UnTxdPropertyData::~UnTxdPropertyData() {
    if (link_) link_->sever();
}

void UnTxdPropertyData::add(UnTxdProperty& property) { properties_.add(property); }
void UnTxdPropertyData::remove(UnTxdProperty& property) noexcept { properties_.remove(property); }

void UnTxdPropertyData::storeValue(ItemReference value, Propagate toTwin) {
    value_ = value;
    if (toTwin == Propagate::no) return;
    if (TxdPropertyData* const twin = txdData()) twin->storeValue(std::move(value), Propagate::no);
}

}  // namespace nxSupport
