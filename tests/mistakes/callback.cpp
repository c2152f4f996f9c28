// says: a callback of this signal can be called with its arguments: Signal<A, B> calls callback(a, b)
#include "foundation/urRTB/Signal.h"

void listen(urRTB::Signal<int>& changed) {
    changed.addCallback([](char const* text) { return text; });
}
