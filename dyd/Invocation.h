// A call that runs later.
#pragma once

#include "dyd/Function.h"

namespace nxDYD {

/// A function with its arguments, called when the object goes, unless another object has taken the call over.
///
/// A copy takes over the call, its arguments and its state, and leaves the source spent; an assignment copies all
/// of it, so that both sides may run. A call that was pending on the left side of an assignment is dropped.
/// What the function or its hooks throw is printed on the application output.
class NX_API Invocation {
public:
    /// Takes over the contents of `args`, which is empty afterwards. Nothing runs when `function` is null.
    Invocation(Function* function, ur::vector<ur::Reference<Arg>>& args) noexcept;
    Invocation(Invocation const& source) noexcept;
    Invocation& operator=(Invocation const& source);
    ~Invocation();

private:
    ur::Reference<Arg> invoke();
    [[nodiscard]] bool invoked() const noexcept { return invoked_; }

    ur::Reference<Function> function_;
    // A copy takes them over from a source that may be a temporary.
    mutable ur::vector<ur::Reference<Arg>> args_;
    mutable bool invoked_ = false;
};

}  // namespace nxDYD
