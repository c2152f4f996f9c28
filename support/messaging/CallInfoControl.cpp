// Ends a suppression that was not released.
#include "support/messaging/CallInfoControl.h"

#include "foundation/urOS/FirstError.h"

namespace nxSupport {

CallInfoControl::~CallInfoControl() noexcept(false) {
    if (!suppressed_) return;
    urOS::FirstError errors("nxSupport::CallInfoControl");
    errors.guard([this] { release(); });
    errors.leaveDestructor();
}

}  // namespace nxSupport
