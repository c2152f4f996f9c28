// Work that must not see the call information of the contexts around it.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

/// Suppresses a domain's call information for a while: the next context makes one of its own.
///
/// Suppressions nest, and end in the reverse order of their start; the domain outlives them. The destructor releases
/// what is still suppressed; what a handler of `callInfoSuppressionChanged` throws then leaves it, or is printed on the
/// application output when the stack is being unwound already. Main thread only.
class NX_API CallInfoControl {
public:
    [[nodiscard]] explicit CallInfoControl(Domain& domain) noexcept : domain_(domain) {}
    CallInfoControl(CallInfoControl const&) = delete;
    CallInfoControl& operator=(CallInfoControl const&) = delete;
    ~CallInfoControl() noexcept(false);

    void suppress() {
        suppressed_ = true;
        domain_.callInfoSuppress();
    }
    /// Requires: `suppress` was called before.
    void release() {
        suppressed_ = false;
        domain_.callInfoRelease();
    }
    /// By anyone, not only by this object.
    [[nodiscard]] bool isSuppressed() const noexcept { return domain_.callInfoSuppressed(); }

private:
    Domain& domain_;
    bool suppressed_ = false;
};

}  // namespace nxSupport
