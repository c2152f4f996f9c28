// Saves the values of a property set as a dictionary, and loads them.
#pragma once

#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "plst/Dictionary.h"
#include "support/properties/PropertySet.h"

namespace nxSupport {

/// The names that did not fit when values were loaded. Each list is sorted by name.
struct LoadReport {
    ur::vector<urString::CString> missing;     ///< properties without a value in the dictionary; they keep theirs
    ur::vector<urString::CString> extra;       ///< values without a property
    ur::vector<urString::CString> wrongShape;  ///< properties that keep their value, because it has another structure
    ur::vector<urString::CString> corrected;   ///< properties whose validators replaced the value

    [[nodiscard]] bool complete() const noexcept {
        return missing.empty() && extra.empty() && wrongShape.empty() && corrected.empty();
    }
};

/// Copies of all values, by the names of their properties. Properties without a value are left out.
[[nodiscard]] NX_API ur::Reference<nxPLST::Dictionary> saveValues(PropertySet const& set);

/// Sets every property that has a value in `values`, sorted by name, with validation and notification. A property
/// without a value accepts any; one with a value accepts only the same structure (`congruent`).
NX_API LoadReport loadValues(PropertySet& set, nxPLST::Dictionary const& values);

}  // namespace nxSupport
