// The end of a suppression that nobody has ended.
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
