// Properties under their names.
#pragma once

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "support/properties/Property.h"

namespace nxSupport {

/// A group of properties that one module hands to another, at most one under each name. Holds references to them; a
/// property may be in several sets. Shared by reference, main thread only.
class NX_API PropertySet : public ur::ReferenceCount {
public:
    using Map = ur::map<urString::CString, ur::Reference<Property>, ur::less<urString::CString>>;

    PropertySet() = default;
    ~PropertySet() override;

    /// Null when no property has that name.
    [[nodiscard]] ur::Reference<Property> find(urString::CString const& name) const;
    /// In the order of the names.
    [[nodiscard]] Map const& getMap() const noexcept { return map_; }

    /// Takes the place of any property of the same name. Null is not inserted.
    void insert(ur::Reference<Property> property);
    /// Adds the properties of `other`, themselves and not copies, whose names are missing here.
    void merge(ur::Reference<PropertySet const> other);

private:
    Map map_;
};

}  // namespace nxSupport
