// The domain in which everything runs.
#pragma once

#include "foundation/nxTXN/Manager.h"
#include "foundation/urThread/RunQueue.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Domain.h"

namespace nxhost {

/// Offers the host's services in every context, and makes the changes to the document in a context one step of the
/// history, as its mode demands. The three kinds of interaction contexts that follow each other make one step.
///
/// Owned by the host, like what it is given.
class HostDomain final : public nxSupport::Domain {
public:
    HostDomain(urThread::RunQueue& queue, nxTXN::Manager& history)
        : Domain(nullptr), queue_(queue), history_(history) {}

    urThread::RunQueue& runQueue() override { return queue_; }

    /// Every call information made from now on has it.
    template <class T>
    void offer(T* service) {
        services_.emplace_back(ur::TypeInfo::of<T>(), service);
    }

    /// A script's error came up: the innermost context that changes the document is to take its changes back.
    void noteFailure() noexcept { failed_ = true; }

protected:
    void onBeginContext(nxSupport::Context const& context) override;
    void onEndContext(nxSupport::Context const& context) override;
    void onCallInfoCreated(nxSupport::CallInfo* callInfo, bool appOnly) override;
    void onCallInfoDestroyed(nxSupport::CallInfo* /*callInfo*/) override {}

private:
    urThread::RunQueue& queue_;
    nxTXN::Manager& history_;
    nxSupport::CallInfo::Interfaces services_;
    bool failed_ = false;
};

}  // namespace nxhost
