// Script functions that native code holds, and native functions that scripts hold.
#pragma once

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxRFL/Function.h"

namespace nxLC::impl {

/// A function of a script. Keeps it alive in its state; does nothing once the state is closed.
class ScriptFunction final : public nxRFL::Function {
public:
    /// Takes over a place in the table of functions, unless it throws.
    ScriptFunction(Binding& binding, int place);
    ~ScriptFunction() override;

    [[nodiscard]] bool canRun() const noexcept override { return link_->binding && !link_->binding->meter.ended(); }

    [[nodiscard]] urString::CString describe() const override;

    /// Pushes the function itself if `state` is its own. Never raises.
    [[nodiscard]] bool push(Binding const& binding, lua_State* state) const noexcept;

private:
    void onCall(nxRFL::Stack const& arguments, nxRFL::Stack& results) const override;

    ur::Reference<Link> link_;
    int place_;
    ur::Charge charge_;
};

/// Stores the function at `index`, which is positive. Raises.
[[nodiscard]] int keepFunction(Binding& binding, lua_State* state, int index);
/// The function stored at `place`. Requires: not called for this place before.
[[nodiscard]] ur::Reference<nxRFL::Function> functionAt(Binding& binding, int place);

/// Pushes a function in the form that scripts call; nil for null. Raises.
void pushScriptFunction(Binding& binding, lua_State* state, ur::Reference<nxRFL::Function> const& function);

/// The `__gc` metamethod of userdata that hold native functions.
int collectFunction(lua_State* state);

}  // namespace nxLC::impl
