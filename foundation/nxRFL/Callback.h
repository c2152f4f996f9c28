// Calls a script function from native code.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Stack.h"

namespace nxRFL {

/// Calls a function whose errors the caller does not handle: they go to the database's error handler.
///
/// Keeps the function alive. A script function does nothing once its script state has closed.
class NX_API Callback {
public:
    /// If `function` is null, calls do nothing.
    explicit Callback(ur::Reference<Function> function) noexcept : function_(std::move(function)) {}

    [[nodiscard]] ur::Reference<Function> const& function() const noexcept { return function_; }

    /// False, and `results` empty, when the function fails or no function can run.
    bool call(Stack const& arguments, Stack& results) const;

    /// Passes an error to `Database::reportError`.
    void callHandler(Exception const& error) const;

private:
    ur::Reference<Function> function_;
};

}  // namespace nxRFL
