// Saves and loads the values of a property set.
#include "support/properties/savedValues.h"

namespace nxSupport {

ur::Reference<nxPLST::Dictionary> saveValues(PropertySet const& set) {
    auto values = ur::make<nxPLST::Dictionary>();
    for (auto const& [name, property] : set.getMap()) {
        if (auto const value = property->value()) values->insert(name, value->clone());
    }
    return values;
}

LoadReport loadValues(PropertySet& set, nxPLST::Dictionary const& values) {
    LoadReport report;
    for (auto const& [name, value] : values.dictionary()) {
        if (!set.find(name)) report.extra.push_back(name);
    }
    // a copy, because listeners may change the set
    PropertySet::Map const properties(set.getMap().begin(), set.getMap().end());
    for (auto const& [name, property] : properties) {
        auto const value = values.find(name);
        if (!value) {
            report.missing.push_back(name);
        } else if (auto const current = property->value(); current && !current->congruent(*value)) {
            report.wrongShape.push_back(name);
        } else if (!property->setValue(value->clone())) {
            report.corrected.push_back(name);
        }
    }
    return report;
}

}  // namespace nxSupport
