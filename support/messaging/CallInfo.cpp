// Making call information, and finding the current one.
#include "support/messaging/CallInfo.h"

#include "support/messaging/Domain.h"

namespace nxSupport {

CallInfo::CallInfo() { interfaces_.reserve(32); }

void CallInfo::addInMoreRoom(ur::TypeInfo type, void* interface) { interfaces_.emplace_back(type, interface); }

CallInfo const& CallInfo::currentCallInfo() { return Domain::callInfoFunc(); }

CallInfo const& ci() { return CallInfo::currentCallInfo(); }

}  // namespace nxSupport
