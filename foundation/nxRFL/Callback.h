// Calling a script function from native code.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Stack.h"

namespace nxRFL {

/// Calls a function whose errors its caller does not want: they go to the database's error handler.
///
/// Keeps the function alive. A script's function does nothing once its script state has closed.
class NX_API Callback {
public:
    /// `function` may be null: then nothing is called.
    explicit Callback(ur::Reference<Function> function) noexcept : function_(std::move(function)) {}

    [[nodiscard]] ur::Reference<Function> const& function() const noexcept { return function_; }

    /// False, and `results` without items, when the function fails or there is none that can run.
    bool call(Stack const& arguments, Stack& results) const;

    /// What becomes of an error: `Database::reportError`.
    void callHandler(Exception const& error) const;

private:
    ur::Reference<Function> function_;
};

}  // namespace nxRFL
