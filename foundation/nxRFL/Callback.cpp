// Calls functions and passes their errors to a handler.
#include "foundation/nxRFL/Callback.h"

#include "foundation/nxRFL/Database.h"

namespace nxRFL {

bool Callback::call(Stack const& arguments, Stack& results) const {
    if (!function_ || !function_->canRun()) return false;
    // The call may drop this callback.
    Callback const self(*this);
    try {
        self.function_->call(arguments, results);
        return true;
    } catch (Exception const& error) {
        results.clear();
        self.callHandler(error);
        return false;
    }
}

void Callback::callHandler(Exception const& error) const {
    if (function_) function_->getDB()->reportError(error);
}

}  // namespace nxRFL
