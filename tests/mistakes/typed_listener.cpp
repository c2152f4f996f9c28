// says: a listener of an nxSupport::Prop<T> is called with (T const&, PropertyModType)
#include "support/properties/Prop.h"

void follow(nxSupport::Prop<double>& size) {
    auto const handle = size.subscribe([](double value) { return value; });
}
