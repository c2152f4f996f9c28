// Adds the offered services to the call information.
#include "support/messaging/ServiceDomain.h"

namespace nxSupport {

void ServiceDomain::onBeginContext(Context const& /*context*/) {}
void ServiceDomain::onEndContext(Context const& /*context*/) {}
void ServiceDomain::onCallInfoDestroyed(CallInfo* /*callInfo*/) {}

// [services]
void ServiceDomain::onCallInfoCreated(CallInfo* callInfo, bool /*appOnly*/) {
    for (auto const& [type, service] : services_) callInfo->add(type, service);
}
// [services]

}  // namespace nxSupport
