// Connects objects to their history.
#include "foundation/nxTXN/Object.h"

#include "foundation/nxTXN/impl/History.h"

namespace nxTXN {

Object::Object(Manager& manager) : Object(manager, Counting::none) {}
Object::Object(Manager& manager, Counting counting)
    : history_(manager.history_.get()),
      index_(history_->enter(*this, counting != Counting::none, counting != Counting::referencesOfValue)) {}

Object::~Object() {
    if (history_) history_->lifetimes().leave(*this);
}

void Object::onTransact(Serializer& /*serializer*/) {}
void Object::onTxnRestored() {}
void Object::onTxnModified() {}
void Object::onTxnDestroyed() {}
void Object::onTxnExtant() {}
void Object::onTxnGetSize(ObjectSize& size) const { size.raiseBase(sizeof(Object)); }
urString::CString Object::onTxnName() const { return {}; }

void Object::transact() {
    if (history_) history_->transact(*this);
}

void Object::transactSilently() {
    if (history_) history_->transactSilently(*this);
}

bool Object::isTxnExtant() const noexcept { return history_ && history_->lifetimes().entryOf(*this).exists(); }

bool Object::isTxnChangeable() const noexcept { return isTxnExtant() && history_->allowsChange(*this); }

Manager* Object::txnManager() const noexcept { return history_ ? history_->manager() : nullptr; }

}  // namespace nxTXN
