// Runs deferred calls.
#include "dyd/Invocation.h"

#include <exception>
#include <utility>

#include "foundation/urOS/reportException.h"

namespace nxDYD {

Invocation::Invocation(Function* function, ur::vector<ur::Reference<Arg>>& args) noexcept
    : function_(function), args_(std::exchange(args, {})) {}

Invocation::Invocation(Invocation const& source) noexcept
    : function_(source.function_),
      args_(std::exchange(source.args_, {})),
      invoked_(std::exchange(source.invoked_, true)) {}

Invocation& Invocation::operator=(Invocation const& source) = default;

Invocation::~Invocation() {
    if (invoked() || !function_) return;
    try {
        static_cast<void>(invoke());
    } catch (...) {
        urOS::reportException(function_->name().c_str(), std::current_exception());
    }
}

ur::Reference<Arg> Invocation::invoke() {
    invoked_ = true;
    return function_->call(args_);
}

}  // namespace nxDYD
