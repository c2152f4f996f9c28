// Combines several native functions under one name.
#pragma once

#include <tuple>
#include <utility>

#include "foundation/nxRFL/Function.h"

namespace nxRFL {

/// The result of `overloads`.
template <class... Callables>
struct Overloads {
    std::tuple<Callables...> callables;
};

/// A call runs the callable that has its number of parameters, otherwise the first one that defaults complete:
/// `addMethod("line", overloads(&Pen::lineTo, &Pen::line))`. Names and defaults belong to every callable: each takes
/// the first ones, as many as it has parameters.
template <class... Callables>
[[nodiscard]] Overloads<Callables...> overloads(Callables... callables) {
    return {{std::move(callables)...}};
}

/// Selects a function by the number of arguments.
class NX_API OverloadedFunction final : public Function {
public:
    /// Requires: at least one function; either all are methods or none is.
    OverloadedFunction(Database& database, ur::vector<ur::Reference<Function>> functions);

    void setName(urString::CString name) override;
    [[nodiscard]] std::span<ur::Reference<Function> const> overloads() const noexcept override { return functions_; }

private:
    void onCall(Stack const& arguments, Stack& results) const override;
    void onSetParameters(std::span<Parameter const> parameters) override;
    /// The form that a call runs; null when none fits.
    [[nodiscard]] Function const* formFor(unsigned arguments) const noexcept;

    ur::vector<ur::Reference<Function>> functions_;
};

}  // namespace nxRFL
