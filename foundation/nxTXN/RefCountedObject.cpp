// Objects that their manager deletes.
#include "foundation/nxTXN/RefCountedObject.h"

#include "foundation/nxTXN/impl/History.h"

namespace nxTXN {

RefCountedObject::~RefCountedObject() = default;

void RefCountedObject::txnDelete() { delete this; }

void RefCountedObject::onTxnGetSize(ObjectSize& size) const {
    size.raiseBase(sizeof(RefCountedObject));
    Object::onTxnGetSize(size);
}

// References to const objects count as well, and the last of them may be what keeps the object.
void RefCountedObject::lastReferenceGone() const noexcept {
    auto& self = const_cast<RefCountedObject&>(*this);
    history_ ? history_->lifetimes().lastReferenceGone(self) : impl::Lifetimes::removeOrphan(self);
}

}  // namespace nxTXN
