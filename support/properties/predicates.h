// What shape the value of a property has.
#pragma once

#include "support/properties/Property.h"

namespace nxSupport {

/// A single number. False, as below, when there is no value or no property.
[[nodiscard]] NX_API bool isDouble(ur::Reference<Property const> property);
/// An array of three numbers: value, minimum and maximum. Both accept the same items, whole numbers or not.
[[nodiscard]] NX_API bool isBoundedDouble(ur::Reference<Property const> property);
[[nodiscard]] NX_API bool isBoundedInt(ur::Reference<Property const> property);

}  // namespace nxSupport
