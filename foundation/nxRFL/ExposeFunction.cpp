// Adds functions to a table.
#include "foundation/nxRFL/ExposeFunction.h"

#include <utility>

namespace nxRFL {

void ExposeFunction::add(urString::CString const& name, ur::Reference<Function> function) {
    if (function) function->setName(table_.name + "." + name);
    table_.functions.add({Member::Kind::function, name, std::move(function), nullptr});
}

}  // namespace nxRFL
