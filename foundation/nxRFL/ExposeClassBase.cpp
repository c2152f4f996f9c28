// Fills classes and tables of functions.
#include "foundation/nxRFL/ExposeClassBase.h"

#include <algorithm>

#include "foundation/nxRFL/ExposeFunction.h"
#include "foundation/nxRFL/Parameter.h"

namespace nxRFL {

namespace {

void nameFunction(ur::Reference<Function> const& function, urString::CString const& owner,
                  urString::CString const& name) {
    if (function) function->setName(owner + "." + name);
}

/// Names the function first, so that the error does.
void nameParameters(ur::Reference<Function> const& function, urString::CString const& owner,
                    urString::CString const& name, std::initializer_list<Parameter> parameters) {
    if (!function || parameters.size() == 0) return;
    nameFunction(function, owner, name);
    function->setParameters(parameters);
}

}  // namespace

void ExposeClassBase::addBase(Class& base, Class::Conversion toBase, Class::Conversion toThis) {
    if (class_.isA(base) || base.isA(class_)) return;
    class_.bases_.push_back({&base, toBase, toThis});
    base.derived_.push_back(&class_);
    if (!class_.testedBase_ && (base.aliveTest_ || base.testedBase_)) class_.testedBase_ = &base;
    database_.forgetSeenTypes();
}

void ExposeClassBase::addMethod(urString::CString const& name, ur::Reference<Function> function) {
    add(Member::Kind::method, name, std::move(function), nullptr);
}

void ExposeClassBase::addMethod(urString::CString const& name, ur::Reference<Function> function,
                                std::initializer_list<Parameter> parameters) {
    nameParameters(function, class_.name(), name, parameters);
    addMethod(name, std::move(function));
}

void ExposeClassBase::addStaticMethod(urString::CString const& name, ur::Reference<Function> function,
                                      std::initializer_list<Parameter> parameters) {
    nameParameters(function, class_.name(), name, parameters);
    addStaticMethod(name, std::move(function));
}

void ExposeClassBase::addStaticMethod(urString::CString const& name, ur::Reference<Function> function) {
    add(Member::Kind::staticMethod, name, std::move(function), nullptr);
}

void ExposeClassBase::addProperty(urString::CString const& name, ur::Reference<Function> getter,
                                  ur::Reference<Function> setter) {
    add(Member::Kind::property, name, std::move(getter), std::move(setter));
}

void ExposeClassBase::addOtherNames(ur::Reference<Function> getter, ur::Reference<Function> setter) {
    nameFunction(getter, class_.name(), "NAME");
    nameFunction(setter, class_.name(), "NAME");
    getter->setParameters({"name"});
    setter->setParameters({"name", "value"});
    class_.otherNames_.add({Member::Kind::property, {}, std::move(getter), std::move(setter)});
}

void ExposeClassBase::addIterator(urString::CString const& name, ur::Reference<Function> begin,
                                  ur::Reference<Function> value) {
    add(Member::Kind::iterator, name, std::move(begin), std::move(value));
}

void ExposeClassBase::add(Member::Kind kind, urString::CString const& name, ur::Reference<Function> function,
                          ur::Reference<Function> second) {
    nameFunction(function, class_.name(), name);
    nameFunction(second, class_.name(), name);
    class_.members_.add({kind, name, std::move(function), std::move(second)});
}

}  // namespace nxRFL
