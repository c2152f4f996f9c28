// Checks the shape of a property's value.
#include "support/properties/predicates.h"

#include "plst/shape.h"

namespace nxSupport {

bool isDouble(ur::Reference<Property const> property) {
    return property && nxPLST::hasShape<double>(property->value());
}
bool isBoundedDouble(ur::Reference<Property const> property) {
    return property && nxPLST::hasShape<BoundedDouble>(property->value());
}
bool isBoundedInt(ur::Reference<Property const> property) {
    return property && nxPLST::hasShape<BoundedInt>(property->value());
}

}  // namespace nxSupport
