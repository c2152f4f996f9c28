// Checks the shape of a property's value.
#pragma once

#include "support/properties/Property.h"

namespace nxSupport {

/// Whether the value is a single number. All return false if there is no value or no property.
[[nodiscard]] NX_API bool isDouble(ur::Reference<Property const> property);
/// Whether the value is an array of three numbers: value, minimum and maximum. Both accept fractions.
[[nodiscard]] NX_API bool isBoundedDouble(ur::Reference<Property const> property);
[[nodiscard]] NX_API bool isBoundedInt(ur::Reference<Property const> property);

}  // namespace nxSupport
