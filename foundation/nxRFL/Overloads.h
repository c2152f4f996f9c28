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

/// A call runs the first callable that accepts its number of arguments, defaults included: `addMethod("line",
/// overloads(&Pen::lineTo, &Pen::line))`.
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

    ur::vector<ur::Reference<Function>> functions_;
};

}  // namespace nxRFL
