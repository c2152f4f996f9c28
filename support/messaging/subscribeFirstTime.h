// Subscribes a module exactly once to each broadcaster.
#pragma once

#include "support/messaging/Broadcaster.h"
#include "support/messaging/CallInfo.h"

namespace nxSupport {

/// Subscribes `function` to messages of class T on the current call information's broadcaster, before all modules of
/// the host. Does nothing if `firstTime` is false. Returns true if it subscribed.
///
/// `firstTime` is a static variable of the caller that starts as true. This function sets it to false, and the
/// broadcaster's destructor sets it to true again. Without a broadcaster it stays true, so a later call can subscribe.
template <class T>
bool subscribeFirstTime(bool& firstTime, void (*function)(T&)) {
    if (!firstTime) return false;
    auto* const broadcaster = ci().get<Broadcaster>();
    if (!broadcaster) return false;
    broadcaster->addFirstTimeFlag(&firstTime);
    broadcaster->connect<T>({LibraryUnit, LibraryModule}, function);
    firstTime = false;
    return true;
}

}  // namespace nxSupport
