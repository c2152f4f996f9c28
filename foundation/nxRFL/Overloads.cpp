// Dispatches calls by the number of arguments.
#include "foundation/nxRFL/Overloads.h"

#include <algorithm>
#include <utility>

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Parameter.h"
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

void OverloadedFunction::onSetParameters(std::span<Parameter const> parameters) {
    auto const most = [](auto const& form) { return form->mostArguments(); };
    requireArguments(parameters.size(), most(*std::ranges::max_element(functions_, {}, most)));
    for (auto const& form : functions_) form->setParameters(parameters.first(std::min(parameters.size(), most(form))));
}

Function const* OverloadedFunction::formFor(unsigned arguments) const noexcept {
    for (auto const& form : functions_) {
        if (form->signature().size() == arguments + 1) return form.get();
    }
    for (auto const& form : functions_) {
        if (form->takes(arguments)) return form.get();
    }
    return nullptr;
}

void OverloadedFunction::onCall(Stack const& arguments, Stack& results) const {
    if (Function const* const form = formFor(arguments.size())) return form->call(arguments, results);
    unsigned const object = isMethod() ? 1 : 0;
    if (arguments.size() < object) return functions_.front()->call(arguments, results);  // reports the missing object
    throw Exception(urString::CString(name()).append(
        urString::CString::format(" has no form with %u arguments", arguments.size() - object)));
}

}  // namespace nxRFL
