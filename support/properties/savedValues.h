// The values of a property set as a dictionary, and back.
#pragma once

#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "plst/Dictionary.h"
#include "support/properties/PropertySet.h"

namespace nxSupport {

/// What did not fit when values were loaded. Each list is in the order of the names.
struct LoadReport {
    ur::vector<urString::CString> missing;     ///< properties for which there was no value; they keep theirs
    ur::vector<urString::CString> extra;       ///< values for which there is no property
    ur::vector<urString::CString> wrongShape;  ///< properties that keep their value, which has another structure
    ur::vector<urString::CString> corrected;   ///< properties whose validators put another value in the place

    [[nodiscard]] bool complete() const noexcept {
        return missing.empty() && extra.empty() && wrongShape.empty() && corrected.empty();
    }
};

/// Private copies of all values under the names of their properties. Properties without a value are left out.
[[nodiscard]] NX_API ur::Reference<nxPLST::Dictionary> saveValues(PropertySet const& set);

/// Sets every property that `values` has a value for, in the order of the names and with all that setting entails. A
/// property without a value takes any; one with a value only another of the same structure (`congruent`).
NX_API LoadReport loadValues(PropertySet& set, nxPLST::Dictionary const& values);

}  // namespace nxSupport
