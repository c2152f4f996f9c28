// Walking past members that come and go.
#include "support/properties/impl/JoinedPropertyIterator.h"

namespace nxSupport::impl {

JoinedData::JoinedData(Property const& property) {
    if (TxdProperty const* const transacted = asTxd(property)) {
        txd = transacted->data().get();
        untxd = txd ? txd->untxdTwin() : nullptr;
    } else if (UnTxdProperty const* const untransacted = asUnTxd(property)) {
        untxd = untransacted->data().get();
        txd = untxd->txdData();
    }
}

TxdProperty const* JoinedData::asTxd(Property const& property) noexcept {
    return property.kind_ == Property::Kind::transacted ? static_cast<TxdProperty const*>(&property) : nullptr;
}

UnTxdProperty const* JoinedData::asUnTxd(Property const& property) noexcept {
    return property.kind_ == Property::Kind::untransacted ? static_cast<UnTxdProperty const*>(&property) : nullptr;
}

JoinedPropertyIterator::JoinedPropertyIterator(Property const& start, Start handling)
    : start_(&start), handling_(handling), txd_(JoinedData(start).txd), untxd_(JoinedData(start).untxd) {
    passOver();
}

ur::Reference<Property> JoinedPropertyIterator::current() const noexcept {
    return txd_.valid() ? ur::Reference<Property>(txd_.member()) : ur::Reference<Property>(untxd_.member());
}

void JoinedPropertyIterator::next() noexcept {
    txd_.valid() ? txd_.next() : untxd_.next();
    passOver();
}

void JoinedPropertyIterator::rewind(Start handling) noexcept {
    handling_ = handling;
    txd_.rewind();
    untxd_.rewind();
    passOver();
}

bool JoinedPropertyIterator::isCurrent() const noexcept {
    JoinedData const now(*start_);
    return start_->isTransacted() ? now.txd == txd_.data() : now.untxd == untxd_.data();
}

// Undo may list a transacted property that nobody holds any more until its history lets go of it: it is no member.
void JoinedPropertyIterator::passOver() noexcept {
    auto const skipped = [this](Property const* member) {
        return !member || (handling_ == Start::skip && member == start_.get());
    };
    while (txd_.valid() && (skipped(txd_.member()) || !txd_.member()->isTxnExtant())) txd_.next();
    while (!txd_.valid() && untxd_.valid() && skipped(untxd_.member())) untxd_.next();
}

}  // namespace nxSupport::impl
