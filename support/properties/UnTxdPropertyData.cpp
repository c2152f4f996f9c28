// Stores an untransacted value and ends its link.
#include "support/properties/UnTxdPropertyData.h"

#include <utility>

#include "support/properties/UnTxdProperty.h"

namespace nxSupport {

UnTxdPropertyData::~UnTxdPropertyData() {
    if (link_) link_->sever();
}

void UnTxdPropertyData::add(UnTxdProperty& property) { properties_.add(property); }
void UnTxdPropertyData::remove(UnTxdProperty& property) noexcept { properties_.remove(property); }

// Store on the transacted side first, because recording may fail.
void UnTxdPropertyData::storeValue(ItemReference value, Propagate toTwin) {
    TxdPropertyData* const twin = toTwin == Propagate::yes ? txdData() : nullptr;
    if (twin) twin->storeValue(value, Propagate::no);
    value_ = std::move(value);
}

}  // namespace nxSupport
