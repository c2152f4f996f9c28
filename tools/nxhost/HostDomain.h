// The domain in which everything runs.
#pragma once

#include "foundation/nxTXN/Manager.h"
#include "support/messaging/ServiceDomain.h"

namespace nxhost {

/// Makes the changes to the document in a context one step of the
/// history, as its mode demands. The three kinds of interaction contexts that follow each other make one step.
///
/// Owned by the host, like what it is given.
class HostDomain final : public nxSupport::ServiceDomain {
public:
    HostDomain(urThread::RunQueue& queue, nxTXN::Manager& history) : ServiceDomain(queue), history_(history) {}

    /// A script's error came up: the innermost context that changes the document is to take its changes back.
    void noteFailure() noexcept { failed_ = true; }

protected:
    void onBeginContext(nxSupport::Context const& context) override;
    void onEndContext(nxSupport::Context const& context) override;

private:
    nxTXN::Manager& history_;
    bool failed_ = false;
};

}  // namespace nxhost
