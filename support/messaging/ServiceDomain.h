// A domain that can be used without deriving from it.
#pragma once

#include "foundation/urThread/RunQueue.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

/// Adds its services to every call information, and does nothing when contexts begin and end.
///
///     urThread::RunQueue queue;
///     nxSupport::Broadcaster broadcaster;
///     nxSupport::ServiceDomain application(queue);
///     application.offer(&broadcaster);
///
/// Derive from it to react to contexts. The queue and the services are not owned and must outlive it.
class NX_API ServiceDomain : public Domain {
public:
    explicit ServiceDomain(urThread::RunQueue& queue, Domain* parent = nullptr) : Domain(parent), queue_(queue) {}

    urThread::RunQueue& runQueue() override { return queue_; }

    /// Adds `service` under T to every call information created from now on. Of several per class the first is found.
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
