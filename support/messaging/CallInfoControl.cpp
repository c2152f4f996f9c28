// The end of a suppression that nobody has ended.
#include "support/messaging/CallInfoControl.h"

#include "support/messaging/impl/FirstError.h"

namespace nxSupport {

CallInfoControl::~CallInfoControl() noexcept(false) {
    if (!suppressed_) return;
    impl::FirstError errors("nxSupport::CallInfoControl");
    errors.guard([this] { release(); });
    errors.leaveDestructor();
}

}  // namespace nxSupport
