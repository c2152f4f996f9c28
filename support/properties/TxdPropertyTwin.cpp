// Begins and ends a link.
#include "support/properties/TxdPropertyTwin.h"

#include <utility>

#include "support/properties/UnTxdPropertyData.h"

namespace nxSupport {

TxdPropertyTwin::TxdPropertyTwin(nxTXN::Manager& manager, TxdPropertyData& txdData, UnTxdPropertyData& untxdData)
    : RefCountedObject(manager), txdData_(&txdData), untxdData_(&untxdData) {
    if (untxdData.link_) untxdData.link_->sever();
    untxdData.link_ = this;
}

TxdPropertyTwin::~TxdPropertyTwin() { sever(); }

void TxdPropertyTwin::sever() noexcept {
    if (UnTxdPropertyData* const untransacted = std::exchange(untxdData_, nullptr)) untransacted->link_ = nullptr;
}

void TxdPropertyTwin::onTxnExtant() {
    RefCountedObject::onTxnExtant();
    if (!isTxnExtant()) sever();
}

}  // namespace nxSupport
