// Several native functions under one name.
#pragma once

#include <tuple>
#include <utility>

#include "foundation/nxRFL/Function.h"

namespace nxRFL {

/// Made by `overloads`.
template <class... Callables>
struct Overloads {
    std::tuple<Callables...> callables;
};

/// Callables of which a call takes the one for its number of arguments, defaults of parameters included; of several
/// that fit, the first: `addMethod("line", overloads(&Pen::lineTo, &Pen::line))`.
template <class... Callables>
[[nodiscard]] Overloads<Callables...> overloads(Callables... callables) {
    return {{std::move(callables)...}};
}

/// Chooses among functions by the number of arguments.
class NX_API OverloadedFunction final : public Function {
public:
    /// Requires: at least one function, and all are methods or none is.
    OverloadedFunction(Database& database, ur::vector<ur::Reference<Function>> functions);

    void setName(urString::CString name) override;
    [[nodiscard]] std::span<ur::Reference<Function> const> overloads() const noexcept override { return functions_; }

private:
    void onCall(Stack const& arguments, Stack& results) const override;

    ur::vector<ur::Reference<Function>> functions_;
};

}  // namespace nxRFL
