// How a program describes the classes of its objects.
#pragma once

#include <functional>
#include <optional>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "plst/make.h"

namespace nxSupport {

/// A property of a class: `{.name = "radius", .value = 1.0, .unit = "mm", .minimum = 0}`.
///
/// The default decides the kind of the values: a boolean, a number, a text, an array or a dictionary of the same
/// structure (an array of three numbers for a point). An empty array or dictionary stands for all of its kind, null for
/// any value.
struct PropertyDescription {
    using ItemReference = ur::Reference<nxPLST::Item const>;

    urString::CString name = {};
    nxPLST::Value value = nullptr;  ///< the default
    urString::CString label = {};   ///< for people; the name if empty
    urString::CString description = {};
    urString::CString group = {};
    urString::CString unit = {};
    urString::CString control = {};      ///< what panels show it by, such as "colour"; the program's own words
    std::optional<double> minimum = {};  ///< of a number, and of each number in an array of numbers
    std::optional<double> maximum = {};
    std::optional<double> step = {};         ///< of a control that changes the value; other values are allowed
    ur::vector<nxPLST::Value> choices = {};  ///< the only values, if there are any
    bool readOnly = false;                   ///< panels and scripts show it, only the program changes it
    bool hidden = false;                     ///< panels do not show it
    bool reference = false;                  ///< a text that is the identity of another object, or empty

    /// Why `item` is not a value of this property, as in "is above 100"; empty if it is one.
    [[nodiscard]] NX_API urString::CString faultOf(ItemReference const& item) const;
    /// `item`, or the nearest value: numbers move into the range. Null if there is none.
    [[nodiscard]] NX_API ItemReference nearest(ItemReference const& item) const;
};

/// A class of objects: `{.name = "Circle", .base = "Shape", .properties = {...}}`. It has the properties and the
/// allowed children of its base as well.
struct ClassDescription {
    /// Changes values of an earlier version to those of the next versions up to the present one. What it throws fails
    /// the opening of the file with its text.
    using Upgrade = std::function<void(nxPLST::Dictionary& values, unsigned version)>;

    urString::CString name = {};
    urString::CString base = {};  ///< none if empty
    /// Raise it when the meaning of a property changes: its name, unit, range or default.
    unsigned version = 1;
    ur::vector<PropertyDescription> properties = {};
    ur::vector<urString::CString> children = {};  ///< classes of its children; those derived from them are allowed too
    Upgrade upgrade = {};
};

}  // namespace nxSupport
