// Adds functions to a table.
#include "foundation/nxRFL/ExposeFunction.h"

#include <utility>

namespace nxRFL {

void ExposeFunction::add(urString::CString const& name, ur::Reference<Function> function) {
    if (function) function->setName(table_.name + "." + name);
    table_.functions.add({Member::Kind::function, name, std::move(function), nullptr});
}

void ExposeFunction::add(urString::CString const& name, ur::Reference<Function> function, Parameters parameters) {
    if (function && parameters.size() > 0) {
        function->setName(table_.name + "." + name);  // for the error
        function->setParameters(parameters);
    }
    add(name, std::move(function));
}

}  // namespace nxRFL
