// Runs calls and their hooks.
#include "dyd/Function.h"

#include <utility>

#include "dyd/Invocation.h"
#include "foundation/ur/keepAlive.h"

namespace nxDYD {

Function::~Function() = default;

ur::Reference<Arg> Function::call(ur::vector<ur::Reference<Arg>>& args) {
    auto const self = ur::keepAlive(*this);
    ur::Reference<Hooks> const hooks = hooks_;
    if (!hooks) return onCall(args);
    hooks->preInvoke(this, args);
    ur::Reference<Arg> result = onCall(args);
    hooks->postInvoke(this, args, result.get());
    return result;
}

Invocation Function::call() {
    ur::vector<ur::Reference<Arg>> none;
    return {this, none};
}

}  // namespace nxDYD
