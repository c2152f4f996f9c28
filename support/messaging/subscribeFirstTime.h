// The way in which modules subscribe exactly once to each broadcaster.
#pragma once

#include "support/messaging/Broadcaster.h"
#include "support/messaging/CallInfo.h"

namespace nxSupport {

/// Subscribes `function` to messages of class T on the current call information's broadcaster, before all modules
/// of the host, unless `firstTime` says that this has been done. True when it is done now.
///
/// `firstTime` is a static of the caller that starts as true: it becomes false here, and true again when that
/// broadcaster goes. It stays true when there is no broadcaster, so that a later call can subscribe.
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
