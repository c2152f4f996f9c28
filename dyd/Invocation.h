// A deferred call.
#pragma once

#include "dyd/Function.h"

namespace nxDYD {

/// A function and its arguments, called when the object is destroyed, unless another object has taken over the call.
///
/// A copy takes over the call, its arguments and its state, and leaves the source empty. An assignment copies all of
/// it, so that both sides may run; it drops a call pending on its left side. Exceptions of the function or its hooks
/// are printed on the application output.
class NX_API Invocation {
public:
    /// Takes over the contents of `args`, which is empty afterwards. If `function` is null, nothing runs.
    Invocation(Function* function, ur::vector<ur::Reference<Arg>>& args) noexcept;
    Invocation(Invocation const& source) noexcept;
    Invocation& operator=(Invocation const& source);
    ~Invocation();

private:
    ur::Reference<Arg> invoke();
    [[nodiscard]] bool invoked() const noexcept { return invoked_; }

    ur::Reference<Function> function_;
    // Mutable, since a copy takes them from a source that may be a temporary.
    mutable ur::vector<ur::Reference<Arg>> args_;
    mutable bool invoked_ = false;
};

}  // namespace nxDYD
