// A view of the contexts of a domain as they come and go.
#pragma once

#include <chrono>

#include "foundation/ur/Export.h"

namespace nxSupport {

class Context;

/// Called by a domain when each of its contexts begins and ends, Bare and Bootstrap ones included.
///
/// Not owned by the domain: its owner unsets it before it goes. A context that began unobserved ends
/// unobserved. May do what the domain owner's hooks may, throw and destroy the domain included. Main thread only.
class NX_API ContextObserver {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~ContextObserver() = default;

    /// `context` begins, before any hook has been told.
    virtual void onBegin(Context const& context, Clock::time_point when) = 0;
    /// After all hooks, as the last thing before `context` ceases to be the current one; its post functions are
    /// still to run. Also called for one that has not begun after all because a hook threw.
    virtual void onEnd(Context const& context, Clock::time_point when, Clock::duration lasted) = 0;
};

}  // namespace nxSupport
