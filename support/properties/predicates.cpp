// The shapes of a value under the names of its types.
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
