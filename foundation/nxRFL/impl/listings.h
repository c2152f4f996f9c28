// The formats of listings.
#pragma once

#include <span>

#include "foundation/nxRFL/Database.h"

namespace nxRFL::impl {

/// The types of the arguments that a script passes, without the object of a method.
[[nodiscard]] std::span<urString::CString const> argumentTypes(Function const& function);
/// Visits each function that a call of the given one may run.
template <class Visit>
void forEachForm(Function const& function, Visit&& visit) {
    if (function.overloads().empty()) return visit(function);
    for (auto const& form : function.overloads()) visit(*form);
}
/// "void" when unknown.
[[nodiscard]] urString::CString resultType(Function const& function);

[[nodiscard]] urString::CString textListing(Database const& database);
[[nodiscard]] urString::CString jsonListing(Database const& database);
[[nodiscard]] urString::CString luaStubs(Database const& database);

}  // namespace nxRFL::impl
