// says: a validator of a property is called with (ur::Reference<Property const>, ItemReference&)
#include "support/properties/Property.h"

void check(nxSupport::Property& size) {
    auto const handle = size.subscribeValidation([](double value) { return value > 0; });
}
