// Hides the call information of the surrounding contexts.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/Domain.h"

namespace nxSupport {

/// Suppresses a domain's call information for a while: the next context creates a new one.
///
/// Suppressions nest and end in the reverse order of their start. The domain must outlive them. The destructor releases
/// a suppression that is still active. An exception from a handler of `callInfoSuppressionChanged` then leaves the
/// destructor; during stack unwinding it is printed on the application output instead. Main thread only.
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
    /// Whether call information is suppressed, by this object or any other.
    [[nodiscard]] bool isSuppressed() const noexcept { return domain_.callInfoSuppressed(); }

private:
    Domain& domain_;
    bool suppressed_ = false;
};

}  // namespace nxSupport
