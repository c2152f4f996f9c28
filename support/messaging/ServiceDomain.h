// A domain that is ready to use.
#pragma once

#include "foundation/urThread/RunQueue.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

/// Offers the services that it is given in every call information, and does nothing when contexts begin and end.
///
///     urThread::RunQueue queue;
///     nxSupport::Broadcaster broadcaster;
///     nxSupport::ServiceDomain application(queue);
///     application.offer(&broadcaster);
///
/// Derive from it to act on contexts. The queue and the services are not owned and outlive it.
class NX_API ServiceDomain : public Domain {
public:
    explicit ServiceDomain(urThread::RunQueue& queue, Domain* parent = nullptr) : Domain(parent), queue_(queue) {}

    urThread::RunQueue& runQueue() override { return queue_; }

    /// Every call information made from now on has `service` under T. Of several under one class the first is found.
    template <class T>
    void offer(T* service) {
        services_.emplace_back(ur::TypeInfo::of<T>(), service);
    }

protected:
    void onBeginContext(Context const& context) override;
    void onEndContext(Context const& context) override;
    void onCallInfoCreated(CallInfo* callInfo, bool appOnly) override;
    void onCallInfoDestroyed(CallInfo* callInfo) override;

private:
    urThread::RunQueue& queue_;
    CallInfo::Interfaces services_;
};

}  // namespace nxSupport
