// A transaction object that holds one value for good.
#pragma once

#include <cstddef>
#include <utility>

#include "foundation/nxTXN/RefCountedObject.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"

namespace nxTXN {

/// Holds one reference given at construction and never changed.
///
/// A field that refers to such a holder changes its value by referring to a new one; the former value stays alive
/// for as long as a record refers to its holder. T counts its holders. Owned by the manager.
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
        if (value_) size.add(0);  // the value is shared and counts where it is owned
    }

private:
    ur::Reference<T> const value_;
};

}  // namespace nxTXN
