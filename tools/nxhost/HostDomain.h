// The domain in which scripts run.
#pragma once

#include "foundation/nxTXN/Manager.h"
#include "support/messaging/ServiceDomain.h"

namespace nxhost {

/// Combines the changes to the document in a context into one step of the history, as the context's mode requires. The
/// three interaction contexts of one gesture together make one step.
///
/// Owned by the host, as are its arguments.
class HostDomain final : public nxSupport::ServiceDomain {
public:
    HostDomain(urThread::RunQueue& queue, nxTXN::Manager& history) : ServiceDomain(queue), history_(history) {}

    /// A script has failed: the innermost context that changes the document must undo its changes.
    void noteFailure() noexcept { failed_ = true; }

protected:
    void onBeginContext(nxSupport::Context const& context) override;
    void onEndContext(nxSupport::Context const& context) override;

private:
    nxTXN::Manager& history_;
    bool failed_ = false;
};

}  // namespace nxhost
