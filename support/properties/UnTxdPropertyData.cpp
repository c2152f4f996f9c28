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

// The transacted side first, since recording may fail.
void UnTxdPropertyData::storeValue(ItemReference value, Propagate toTwin) {
    TxdPropertyData* const twin = toTwin == Propagate::yes ? txdData() : nullptr;
    if (twin) twin->storeValue(value, Propagate::no);
    value_ = std::move(value);
}

}  // namespace nxSupport
