// A set of properties by name.
#pragma once

#include <string_view>

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "support/properties/Property.h"

namespace nxSupport {

/// A group of properties that one module passes to another, at most one for each name. Holds references to them; a
/// property may be in several sets. Shared by reference, main thread only.
class NX_API PropertySet : public ur::ReferenceCount {
public:
    using Map = ur::map<urString::CString, ur::Reference<Property>, ur::less<urString::CString>>;

    PropertySet() = default;
    ~PropertySet() override;

    /// Null if no property has that name.
    [[nodiscard]] ur::Reference<Property> find(urString::CString const& name) const;
    /// The same for a literal, a standard string or a view, which is not copied.
    template <urString::ForeignText Name>
    [[nodiscard]] ur::Reference<Property> find(Name const& name) const {
        return findText(urString::viewOf(name));
    }
    /// Sorted by name.
    [[nodiscard]] Map const& getMap() const noexcept { return map_; }

    /// Replaces any property of the same name. Null is ignored.
    void insert(ur::Reference<Property> property);
    /// Adds the properties of `other` whose names are missing here. It does not copy them.
    void merge(ur::Reference<PropertySet const> other);

private:
    [[nodiscard]] ur::Reference<Property> findText(std::string_view name) const;

    Map map_;
};

}  // namespace nxSupport
