// A transaction object that holds one immutable value.
#pragma once

#include <cstddef>
#include <utility>

#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"

namespace nxTXN {

/// Holds one reference, given at construction and never changed.
///
/// To change its value, a field refers to a new holder; the former value stays alive while a record refers to its
/// holder. T counts its holders. The manager owns it.
template <class T>
class ImmutableReference final : public RefCountedObject, public ur::NodeAllocated {
public:
    ImmutableReference(Manager& manager, ur::Reference<T> value)
        : RefCountedObject(manager, Role::value), value_(std::move(value)) {}

    [[nodiscard]] ur::Reference<T> const& value() const noexcept { return value_; }

protected:
    void onTxnGetSize(ObjectSize& size) const override {
        size.raiseBase(sizeof(ImmutableReference));
        RefCountedObject::onTxnGetSize(size);
        if (value_) size.add(0);  // the value is shared; its owner counts it
    }

private:
    ur::Reference<T> const value_;
};

}  // namespace nxTXN
