// Finds the current call information.
#include "support/messaging/CallInfo.h"

#include "support/messaging/Domain.h"

namespace nxSupport {

CallInfo const& CallInfo::currentCallInfo() { return Domain::callInfoFunc(); }

CallInfo const& ci() { return CallInfo::currentCallInfo(); }

}  // namespace nxSupport
