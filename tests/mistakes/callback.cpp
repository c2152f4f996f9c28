// says: a callback of this signal can be called with its arguments
#include "foundation/urRTB/Signal.h"

void listen(urRTB::Signal<int>& changed) {
    changed.addCallback([](char const* text) { return text; });
}
