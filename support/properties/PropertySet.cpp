// Finds and merges properties by name.
#include "support/properties/PropertySet.h"

#include <utility>

namespace nxSupport {

PropertySet::~PropertySet() = default;

ur::Reference<Property> PropertySet::find(urString::CString const& name) const { return findText(name); }

ur::Reference<Property> PropertySet::findText(std::string_view name) const {
    auto const found = map_.find(name);
    return found == map_.end() ? nullptr : found->second;
}

// The old property is destroyed only when the new one is in place, because its destruction may use this set.
void PropertySet::insert(ur::Reference<Property> property) {
    if (!property) return;
    std::swap(map_[property->name()], property);
}

void PropertySet::merge(ur::Reference<PropertySet const> other) {
    if (!other || other == this) return;
    for (auto const& [name, property] : other->map_) map_.emplace(name, property);
}

}  // namespace nxSupport
