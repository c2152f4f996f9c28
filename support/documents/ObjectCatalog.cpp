// Refuses mistaken descriptions.
#include "support/documents/ObjectCatalog.h"

#include <climits>
#include <cmath>
#include <set>

namespace nxSupport {

using urString::CString;

namespace {

CString quoted(CString const& name) { return CString("\"").append(name).append('"'); }

CString faultOf(PropertyDescription const& property) {
    if (property.name.empty()) return "has no name";
    for (auto const& bound : {property.minimum, property.maximum, property.step}) {
        if (bound && !std::isfinite(*bound)) return "has a bound or step that is not finite";
    }
    if (property.minimum && property.maximum && *property.minimum > *property.maximum)
        return "has a minimum above its maximum";
    if (property.step && *property.step <= 0) return "has a step that is not above 0";
    auto const& initial = property.value.item();
    if (property.reference && (!initial || initial->type() != nxPLST::StringType))
        return "is a reference, so its default must be a text";
    for (auto const& choice : property.choices) {
        PropertyDescription plain = property;
        plain.choices.clear();
        if (CString fault = plain.faultOf(choice.item()); !fault.empty())
            return CString("has a choice that ").append(fault);
    }
    if (CString fault = initial ? property.faultOf(initial) : CString(); !fault.empty())
        return CString("has a default that ").append(fault);
    return {};
}

}  // namespace

urUtil::Error ObjectCatalog::add(ClassDescription description) {
    auto const refused = [&](CString const& what) {
        return urUtil::Error(0, CString("class ").append(quoted(description.name)).append(": ").append(what));
    };
    if (description.name.empty()) return refused("has no name");
    if (find(description.name)) return refused("is described already");
    if (description.version == 0 || description.version > INT_MAX) return refused("has a version that is not above 0");
    auto const base = find(description.base);
    if (!base && !description.base.empty()) return refused("has the unknown base " + quoted(description.base));
    std::set<CString> names;
    for (auto const& property : description.properties) {
        CString const called = "property " + quoted(property.name) + " ";
        if (CString const fault = faultOf(property); !fault.empty()) return refused(called + fault);
        if (!names.insert(property.name).second) return refused(called + "is described twice");
        if (base && base->find(property.name)) return refused(called + "is one of the base");
    }
    for (auto const& child : description.children) {
        if (child != description.name && !find(child)) return refused("has the unknown child class " + quoted(child));
    }
    CString const name = description.name;
    classes_[name] = ur::Reference<ObjectClass const>(new ObjectClass(std::move(description), base));
    return {};
}

ur::Reference<ObjectClass const> ObjectCatalog::find(CString const& name) const noexcept {
    auto const found = classes_.find(name);
    return found == classes_.end() ? nullptr : found->second;
}

ur::Reference<ObjectClass const> ObjectCatalog::classFor(CString const& name,
                                                         ObjectClass::Versions const& versions) const {
    auto known = find(name);
    if (!known) return {new ObjectClass(name, versions)};
    for (auto const& [part, version] : known->versions()) {
        auto const other = versions.find(part);
        if (other != versions.end() && other->second > version) return {new ObjectClass(*known, versions)};
    }
    return known;
}

}  // namespace nxSupport
