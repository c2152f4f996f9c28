// Finds what objects have in common.
#include "support/documents/Panel.h"

#include <algorithm>

#include "support/documents/impl/PropertyBinding.h"

namespace nxSupport {
namespace {

/// Whether values of the one property can be values of the other.
bool areAlike(PropertyDescription const& a, PropertyDescription const& b) {
    auto const& left = a.value.item();
    auto const& right = b.value.item();
    return left && right ? left->congruent(*right) : left == right;
}

}  // namespace

Panel::Row::Row(PropertyDescription const& described, ur::Reference<impl::PropertyBinding> bound)
    : description(described), property(bound->property()), binding(std::move(bound)) {}
Panel::Row::Row(Row const&) = default;
Panel::Row::~Row() = default;

bool Panel::Row::isMixed() const noexcept { return binding->isMixed(); }

Panel::Panel(std::span<Object* const> objects) {
    for (Object* const object : objects) {
        if (object && indexes_.try_emplace(object, objects_.size()).second) objects_.emplace_back(object);
    }
    if (objects_.empty() || !objects_.front()->document()) return;
    ur::vector<Object*> bound;
    for (auto const& object : objects_) bound.push_back(object.get());
    for (auto const& property : objects_.front()->objectClass().properties()) {
        bool const isCommon = std::ranges::all_of(objects_, [&](auto const& object) {
            PropertyDescription const* const its = object->objectClass().find(property.name);
            return its && areAlike(*its, property);
        });
        if (isCommon && !property.hidden)
            rows_.emplace_back(property, ur::make<impl::PropertyBinding>(bound, property.name, &property));
    }
    following_ = objects_.front()->document()->changedSignal().addCallback(
        [this](Object& object, urString::CString const& name) { valueChanged(object, name); });
}

Panel::~Panel() = default;

Panel::Row const* Panel::find(urString::CString const& property) const noexcept {
    auto const found = std::ranges::find_if(rows_, [&](Row const& row) { return row.description.name == property; });
    return found == rows_.end() ? nullptr : &*found;
}

void Panel::valueChanged(Object& object, urString::CString const& name) {
    auto const index = indexes_.find(&object);
    if (index == indexes_.end()) return;
    if (Row const* const row = find(name)) row->binding->objectChanged(index->second);
}

}  // namespace nxSupport
