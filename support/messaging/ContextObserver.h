// Observes the contexts of a domain.
#pragma once

#include <chrono>

#include "foundation/ur/Export.h"

namespace nxSupport {

class Context;

/// Called by a domain when each of its contexts begins and ends, including Bare and Bootstrap ones.
///
/// Not owned by the domain: its owner unsets it before destroying it. If the begin of a context was not observed, its
/// end is not observed either. It may do what the domain owner's hooks may do, including throwing and destroying the
/// domain. Main thread only.
class NX_API ContextObserver {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~ContextObserver() = default;

    /// `context` begins; no hook has been called yet.
    virtual void onBegin(Context const& context, Clock::time_point when) = 0;
    /// `context` ends: all hooks have been called, but it is still the current one and its post functions have not run.
    /// Also called for a context that failed to begin because a hook threw.
    virtual void onEnd(Context const& context, Clock::time_point when, Clock::duration lasted) = 0;
};

}  // namespace nxSupport
