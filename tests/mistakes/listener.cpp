// says: a listener of a property is called with (ur::Reference<Property const>, PropertyModType)
#include "support/properties/Property.h"

void follow(nxSupport::Property& size) {
    auto const handle = size.subscribe([](double value) { return value; });
}
