// Dispatches calls by the number of arguments.
#include "foundation/nxRFL/Overloads.h"

#include <utility>

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Stack.h"

namespace nxRFL {

OverloadedFunction::OverloadedFunction(Database& database, ur::vector<ur::Reference<Function>> functions)
    : Function(&database, functions.front()->isMethod()), functions_(std::move(functions)) {
    setSignature(functions_.front()->signature());
}

void OverloadedFunction::setName(urString::CString name) {
    for (auto const& function : functions_) function->setName(name);
    Function::setName(std::move(name));
}

void OverloadedFunction::onCall(Stack const& arguments, Stack& results) const {
    for (auto const& function : functions_) {
        if (function->takes(arguments.size())) return function->call(arguments, results);
    }
    unsigned const object = isMethod() ? 1 : 0;
    if (arguments.size() < object) return functions_.front()->call(arguments, results);  // reports the missing object
    throw Exception(urString::CString(name()).append(
        urString::CString::format(" has no form with %u arguments", arguments.size() - object)));
}

}  // namespace nxRFL
