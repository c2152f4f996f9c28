// Making call information, and finding the current one.
#include "support/messaging/CallInfo.h"

#include "support/messaging/CallInfoControl.h"
#include "support/messaging/impl/FirstError.h"

namespace nxSupport {

CallInfo::CallInfo() { interfaces_.reserve(32); }

void CallInfo::addInMoreRoom(ur::TypeInfo type, void* interface) { interfaces_.emplace_back(type, interface); }

CallInfo const& CallInfo::currentCallInfo() { return Domain::callInfoFunc(); }

CallInfo const& ci() { return CallInfo::currentCallInfo(); }

CallInfoControl::~CallInfoControl() noexcept(false) {
    if (!suppressed_) return;
    impl::FirstError errors("nxSupport::CallInfoControl");
    errors.guard([this] { release(); });
    errors.leaveDestructor();
}

}  // namespace nxSupport
