// Attributes with a value type.
#pragma once

#include "foundation/ur/Export.h"
#include "support/values/AttributeBase.h"

namespace nxSupport {

/// An attribute whose value is a T. Leaf attributes derive from it.
template <class T>
class NX_API Attribute : public AttributeBase {
public:
    /// Returns the current value.
    [[nodiscard]] virtual T evaluate() const = 0;
};

}  // namespace nxSupport
