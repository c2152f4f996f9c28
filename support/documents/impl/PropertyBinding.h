// The property that stands for one value of one or several objects.
#pragma once

#include "foundation/ur/ReferenceCount.h"
#include "support/documents/Object.h"

namespace nxSupport::impl {

/// Keeps an untransacted property and the values of that name in some objects equal.
///
/// The property has the common value, and none while the values differ. Its owner reports changed values by
/// `objectChanged` and keeps the objects alive. `own_` and `shown_` share the value: what controls set through `shown_`
/// reaches `own_` as a notification, and the other way round.
class PropertyBinding final : public ur::ReferenceCount {
public:
    /// Requires: at least one object. `description` may be null.
    PropertyBinding(ur::vector<Object*> objects, urString::CString name, PropertyDescription const* description);

    [[nodiscard]] ur::Reference<Property> const& property() const noexcept { return shown_; }
    [[nodiscard]] bool isMixed() const noexcept { return differing_ > 0; }
    void objectChanged(std::size_t index);

private:
    void correct(Object::ItemReference& candidate) const;
    void onStage(PropertyModType stage);
    void setAll(Object::ItemReference const& value);
    void compare(std::size_t index);
    void compareAll();
    void show();

    ur::vector<Object*> const objects_;
    urString::CString const name_;
    PropertyDescription const* const description_;
    ur::vector<bool> differs_;  ///< whether the value differs from that of the first object
    std::size_t differing_ = 0;
    bool setting_ = false;  ///< the objects are being set, and told of one by one
    bool showing_ = false;  ///< the property is being set to what the objects have
    ur::Reference<Property> own_;
    ur::Reference<Property> shown_;
    urRTB::ScopedConnection listening_;
    urRTB::ScopedConnection validating_;
};

}  // namespace nxSupport::impl
