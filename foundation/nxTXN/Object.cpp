// Objects and their manager.
#include "foundation/nxTXN/Object.h"

#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/nxTXN/impl/Core.h"

namespace nxTXN {

Object::Object(Manager& manager) : Object(manager, Counting::none) {}
Object::Object(Manager& manager, Counting counting)
    : core_(manager.core_.get()),
      index_(core_->enter(*this, counting != Counting::none, counting != Counting::referencesOfValue)) {}

Object::~Object() {
    if (core_) core_->lifetimes().leave(*this);
}

void Object::onTransact(Serializer& /*serializer*/) {}
void Object::onTxnRestored() {}
void Object::onTxnModified() {}
void Object::onTxnDestroyed() {}
void Object::onTxnExtant() {}
void Object::onTxnGetSize(ObjectSize& size) const { size.raiseBase(sizeof(Object)); }

void Object::transact() {
    if (core_) core_->transact(*this);
}

bool Object::isTxnExtant() const noexcept { return core_ && core_->lifetimes().entryOf(*this).exists(); }

Manager* Object::txnManager() const noexcept { return core_ ? &core_->manager() : nullptr; }

RefCountedObject::~RefCountedObject() = default;

void RefCountedObject::txnDelete() { delete this; }

void RefCountedObject::onTxnGetSize(ObjectSize& size) const {
    size.raiseBase(sizeof(RefCountedObject));
    Object::onTxnGetSize(size);
}

// References to const objects count as well, and the last of them may be what keeps the object.
void RefCountedObject::lastReferenceGone() const noexcept {
    auto& self = const_cast<RefCountedObject&>(*this);
    core_ ? core_->lifetimes().lastReferenceGone(self) : impl::Lifetimes::removeOrphan(self);
}

Serializer::~Serializer() = default;

}  // namespace nxTXN
