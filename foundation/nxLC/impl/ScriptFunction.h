// Script functions in native hands, and native functions in the hands of scripts.
#pragma once

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxRFL/Function.h"

namespace nxLC::impl {

/// A function of a script. It stays alive in its state as long as this does, and does nothing once the state is closed.
class ScriptFunction final : public nxRFL::Function {
public:
    /// Takes over a place in the table of functions, when it does not throw.
    ScriptFunction(Binding& binding, int place);
    ~ScriptFunction() override;

    [[nodiscard]] bool canRun() const noexcept override { return link_->binding && !link_->binding->meter.ended(); }

    /// Pushes the function itself, for the state that it comes from. Never raises.
    [[nodiscard]] bool push(Binding const& binding, lua_State* state) const noexcept;

private:
    void onCall(nxRFL::Stack const& arguments, nxRFL::Stack& results) const override;

    ur::Reference<Link> link_;
    int place_;
    ur::Charge charge_;
};

/// Keeps the function at `index`, which is positive. Raises.
[[nodiscard]] int keepFunction(Binding& binding, lua_State* state, int index);
/// The function kept at `place`, for which it has not been called yet.
[[nodiscard]] ur::Reference<nxRFL::Function> functionAt(Binding& binding, int place);

/// Pushes a function as scripts call it; nil for null. Raises.
void pushScriptFunction(Binding& binding, lua_State* state, ur::Reference<nxRFL::Function> const& function);

/// Of the metatable of userdata that hold native functions.
int collectFunction(lua_State* state);

}  // namespace nxLC::impl
